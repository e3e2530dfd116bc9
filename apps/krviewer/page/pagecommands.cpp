#include "page/pagecommands.h"

#include "page/camerapage.h"

namespace krviewer {

namespace {

constexpr int Key(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = Qt::NoModifier) {
  return QKeyCombination(aModifiers, aKey).toCombined();
}

bool Always(CameraPage&) {
  return true;
}

bool IsConnected(CameraPage& aPage) {
  return aPage.IsConnected();
}

bool CanStart(CameraPage& aPage) {
  return aPage.IsConnected() && !aPage.IsStreaming();
}

bool CanStop(CameraPage& aPage) {
  return aPage.IsConnected() && aPage.IsStreaming();
}

bool CanUseSettings(CameraPage& aPage) {
  return aPage.IsConnected() && !aPage.GetSettings().IsWorking();
}

template <Panel kPanel>
bool HasPanel(CameraPage& aPage) {
  return aPage.GetPanels().Has(kPanel);
}

template <Panel kPanel>
bool IsPanelShown(CameraPage& aPage) {
  return aPage.GetPanels().IsShown(kPanel);
}

template <Panel kPanel>
void SwitchPanel(CameraPage& aPage) {
  // One behind another's tab is asked for to be seen.
  aPage.GetPanels().Show(kPanel, !aPage.GetPanels().IsInFront(kPanel));
}

template <Panel kPanel>
constexpr PageCommand MakePanelCommand(const char* aName, const char* aText, int aKey = 0) {
  return {.menu = CommandMenu::View,
          .name = aName,
          .text = aText,
          .key = aKey,
          .isOffered = HasPanel<kPanel>,
          .run = SwitchPanel<kPanel>,
          .isChecked = IsPanelShown<kPanel>};
}

template <PanelPlace kPlace>
constexpr PageCommand MakeMoveCommand(const char* aName, const char* aText) {
  return {.menu = CommandMenu::MovePanel,
          .name = aName,
          .text = aText,
          .isOffered = [](CameraPage& aPage) { return aPage.GetPanels().HasFocusedPanel(); },
          .run = [](CameraPage& aPage) { aPage.GetPanels().MoveFocused(kPlace); }};
}

constexpr PageCommand kCommands[] = {
    {.menu = CommandMenu::File,
     .name = "saveFrame",
     .text = "&Save Frame…",
     .key = Key(Qt::Key_S, Qt::ControlModifier),
     .glyph = ToolGlyph::SaveFrame,
     .isInToolBar = true,
     .beginsGroup = true,
     .isOffered = [](CameraPage& aPage) { return aPage.CanSaveFrame(); },
     .run = [](CameraPage& aPage) { aPage.SaveFrame(); }},
    {.menu = CommandMenu::File,
     .name = "record",
     .text = "Start or Stop Recor&ding",
     .key = Key(Qt::Key_R, Qt::ControlModifier),
     .glyph = ToolGlyph::Record,
     .isInToolBar = true,
     // Of a camera in trouble it is said why it cannot be recorded.
     .isOffered = [](CameraPage& aPage) { return aPage.IsConnected() || aPage.IsInTrouble() || aPage.IsRecording(); },
     .run = [](CameraPage& aPage) { aPage.StartOrStopRecording(); },
     .isChecked = [](CameraPage& aPage) { return aPage.IsRecording(); }},
    {.menu = CommandMenu::File,
     .name = "loadSettings",
     .text = "&Load Device Settings…",
     .beginsGroup = true,
     .isOffered = CanUseSettings,
     .run = [](CameraPage& aPage) { aPage.GetSettings().AskForLoading(); }},
    {.menu = CommandMenu::File,
     .name = "saveSettings",
     .text = "Sa&ve Device Settings…",
     .isOffered = CanUseSettings,
     .run = [](CameraPage& aPage) { aPage.GetSettings().AskForSaving(); }},

    {.menu = CommandMenu::Camera,
     .name = "start",
     .text = "&Start",
     .key = Key(Qt::Key_F5),
     .glyph = ToolGlyph::Start,
     .isInToolBar = true,
     .isOffered = CanStart,
     .run = [](CameraPage& aPage) { aPage.Start(); }},
    {.menu = CommandMenu::Camera,
     .name = "stop",
     .text = "S&top",
     .key = Key(Qt::Key_F5, Qt::ShiftModifier),
     .glyph = ToolGlyph::Stop,
     .isInToolBar = true,
     .isOffered = CanStop,
     .run = [](CameraPage& aPage) { aPage.StopStreaming(); }},
    {.menu = CommandMenu::Camera,
     .name = "single",
     .text = "Single &Frame",
     .key = Key(Qt::Key_F9),
     .glyph = ToolGlyph::Single,
     .isInToolBar = true,
     .isOffered = CanStart,
     .run = [](CameraPage& aPage) { aPage.StartSingle(); }},
    {.menu = CommandMenu::Camera,
     .name = "trigger",
     .text = "T&rigger",
     .key = Key(Qt::Key_F7),
     .glyph = ToolGlyph::Trigger,
     .isInToolBar = true,
     .isOffered = IsConnected,
     .run = [](CameraPage& aPage) { aPage.Trigger(); }},
    {.menu = CommandMenu::Camera,
     .name = "connect",
     .text = "&Connect",
     .beginsGroup = true,
     .isOffered = [](CameraPage& aPage) { return aPage.CanConnect(); },
     .run = [](CameraPage& aPage) { aPage.Reconnect(); }},
    {.menu = CommandMenu::Camera,
     .name = "disconnect",
     .text = "&Disconnect",
     .isOffered = [](CameraPage& aPage) { return aPage.CanDisconnect(); },
     .run = [](CameraPage& aPage) { aPage.Disconnect(); }},

    {.menu = CommandMenu::Camera,
     .name = "region",
     .text = "Region of &Interest…",
     .key = Key(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier),
     .glyph = ToolGlyph::Region,
     .isInToolBar = true,
     .beginsGroup = true,
     .isOffered = [](CameraPage& aPage) { return aPage.IsConnected() && !aPage.GetRegion().IsEditing(); },
     .run = [](CameraPage& aPage) { aPage.GetRegion().Begin(); }},
    {.menu = CommandMenu::Camera,
     .name = "fullFrame",
     .text = "F&ull Frame",
     .isOffered = IsConnected,
     .run = [](CameraPage& aPage) { aPage.GetRegion().SetFullFrame(); }},

    MakePanelCommand<Panel::Features>("showFeatures", "Camera &Features", Key(Qt::Key_1, Qt::AltModifier)),
    MakePanelCommand<Panel::StreamFeatures>("showStream", "&Stream Parameters", Key(Qt::Key_2, Qt::AltModifier)),
    MakePanelCommand<Panel::TransportFeatures>("showTransport", "&Connection Parameters",
                                               Key(Qt::Key_3, Qt::AltModifier)),
    MakePanelCommand<Panel::Histogram>("showHistogram", "&Histogram", Key(Qt::Key_4, Qt::AltModifier)),
    MakePanelCommand<Panel::LineProfile>("showLineProfile", "&Line Profile", Key(Qt::Key_5, Qt::AltModifier)),
    MakePanelCommand<Panel::Intervals>("showIntervals", "Frame Inter&vals", Key(Qt::Key_6, Qt::AltModifier)),
    MakePanelCommand<Panel::Recording>("showRecording", "&Recording", Key(Qt::Key_7, Qt::AltModifier)),
    {.menu = CommandMenu::View,
     .name = "zoomActual",
     .text = "&Actual Size",
     .key = Key(Qt::Key_1, Qt::ControlModifier),
     .glyph = ToolGlyph::ActualSize,
     .isInToolBar = true,
     .beginsGroup = true,
     .isOffered = Always,
     .run = [](CameraPage& aPage) { aPage.GetDisplay().Zoom1_1(); }},
    {.menu = CommandMenu::View,
     .name = "zoomFit",
     .text = "Fit to &Window",
     .key = Key(Qt::Key_0, Qt::ControlModifier),
     .glyph = ToolGlyph::Fit,
     .isInToolBar = true,
     .isOffered = Always,
     .run = [](CameraPage& aPage) { aPage.GetDisplay().ZoomFit(); }},
    {.menu = CommandMenu::View,
     .name = "zoomIn",
     .text = "Zoom &In",
     .key = Key(Qt::Key_Plus, Qt::ControlModifier),
     .glyph = ToolGlyph::ZoomIn,
     .isInToolBar = true,
     .isOffered = Always,
     .run = [](CameraPage& aPage) { aPage.GetDisplay().ZoomIn(); }},
    {.menu = CommandMenu::View,
     .name = "zoomOut",
     .text = "Zoom &Out",
     .key = Key(Qt::Key_Minus, Qt::ControlModifier),
     .glyph = ToolGlyph::ZoomOut,
     .isInToolBar = true,
     .isOffered = Always,
     .run = [](CameraPage& aPage) { aPage.GetDisplay().ZoomOut(); }},

    MakeMoveCommand<PanelPlace::Left>("panelLeft", "To the &Left"),
    MakeMoveCommand<PanelPlace::Right>("panelRight", "To the &Right"),
    MakeMoveCommand<PanelPlace::Bottom>("panelBottom", "To the &Bottom"),
    MakeMoveCommand<PanelPlace::Floating>("panelFloat", "Into a &Window of Its Own"),
    {.menu = CommandMenu::Tools,
     .name = "terminal",
     .text = "&Serial Terminal",
     .key = Key(Qt::Key_T, Qt::ControlModifier),
     .isOffered = [](CameraPage& aPage) { return aPage.GetTools().CanShowTerminal(); },
     .run = [](CameraPage& aPage) { aPage.GetTools().ShowTerminal(); }},
    {.menu = CommandMenu::Tools,
     .name = "serialBridges",
     .text = "Serial &Bridges…",
     .key = Key(Qt::Key_B, Qt::ControlModifier),
     .beginsGroup = true,
     .isOffered = [](CameraPage& aPage) { return aPage.GetTools().GetSerialBridges().CanShow(); },
     .run = [](CameraPage& aPage) { aPage.GetTools().GetSerialBridges().Show(); }},
    {.menu = CommandMenu::Tools,
     .name = "loadSerialBridges",
     .text = "&Load Bridge Setup…",
     .isOffered = [](CameraPage& aPage) { return aPage.GetTools().GetSerialBridges().CanUseFiles(); },
     .run = [](CameraPage& aPage) { aPage.GetTools().GetSerialBridges().AskForLoading(); },
     .getHindrance = [](CameraPage& aPage) { return aPage.GetTools().GetSerialBridges().GetHindrance(); }},
    {.menu = CommandMenu::Tools,
     .name = "saveSerialBridges",
     .text = "Sa&ve Bridge Setup…",
     .isOffered = [](CameraPage& aPage) { return aPage.GetTools().GetSerialBridges().CanUseFiles(); },
     .run = [](CameraPage& aPage) { aPage.GetTools().GetSerialBridges().AskForSaving(); },
     .getHindrance = [](CameraPage& aPage) { return aPage.GetTools().GetSerialBridges().GetHindrance(); }},
    {.menu = CommandMenu::Tools,
     .name = "createPorts",
     .text = "&Create COM Ports",
     .isOffered = Always,
     .run = [](CameraPage& aPage) { aPage.GetTools().SetCreatingPorts(!aPage.GetTools().IsCreatingPorts()); },
     .isChecked = [](CameraPage& aPage) { return aPage.GetTools().IsCreatingPorts(); }},
    {.menu = CommandMenu::Tools,
     .name = "cameraBridges",
     .text = "Camera B&ridges…",
     .key = Key(Qt::Key_K, Qt::ControlModifier),
     .beginsGroup = true,
     .isOffered = [](CameraPage& aPage) { return aPage.GetTools().GetCameraBridges().CanShow(); },
     .run = [](CameraPage& aPage) { aPage.GetTools().GetCameraBridges().Show(); }},
    {.menu = CommandMenu::Tools,
     .name = "loadCameraBridges",
     .text = "L&oad Camera Bridge Setup…",
     .isOffered = [](CameraPage& aPage) { return aPage.GetTools().GetCameraBridges().CanUseFiles(); },
     .run = [](CameraPage& aPage) { aPage.GetTools().GetCameraBridges().AskForLoading(); },
     .getHindrance = [](CameraPage& aPage) { return aPage.GetTools().GetCameraBridges().GetHindrance(); }},
    {.menu = CommandMenu::Tools,
     .name = "saveCameraBridges",
     .text = "Save Ca&mera Bridge Setup…",
     .isOffered = [](CameraPage& aPage) { return aPage.GetTools().GetCameraBridges().CanUseFiles(); },
     .run = [](CameraPage& aPage) { aPage.GetTools().GetCameraBridges().AskForSaving(); },
     .getHindrance = [](CameraPage& aPage) { return aPage.GetTools().GetCameraBridges().GetHindrance(); }},
};

} // namespace

std::span<const PageCommand> GetPageCommands() {
  return kCommands;
}

} // namespace krviewer
