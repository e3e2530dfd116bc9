#pragma once
// The finder's tree without a toolkit: it keeps its items and notes what it was asked to do.

#include "logic/finder/findermodel.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class RecordingTree : public krgui::IFinderTree {
public:
  struct Item {
    Item* parent;
    KrString text;
    int icon;
    krgui::TreeItemInfo* info;
  };

  krgui::TreeItem Append(krgui::TreeItem aParent, const KrString& aText, int aIcon,
                         krgui::TreeItemInfo& aInfo) override {
    items.push_back(std::make_unique<Item>(static_cast<Item*>(aParent), aText, aIcon, &aInfo));
    ++appendCount;
    return items.back().get();
  }
  void Delete(krgui::TreeItem aItem) override {
    ++deleteCount;
    if (selected == aItem)
      Select(nullptr);
    std::erase_if(items, [aItem](const auto& aOther) { return aOther.get() == aItem; });
  }
  void DeleteAll() override {
    Select(nullptr);
    items.clear();
  }
  void SyncText(krgui::TreeItem aItem, const KrString& aText) override {
    static_cast<Item*>(aItem)->text = aText;
    ++syncCount;
  }
  void SyncIcon(krgui::TreeItem aItem, int aIcon) override {
    static_cast<Item*>(aItem)->icon = aIcon;
    ++syncCount;
  }
  void ExpandRoots() override { ++expandCount; }
  void ClearSelection() override { Select(nullptr); }
  krgui::TreeItemInfo* GetSelected() const override { return selected ? selected->info : nullptr; }
  void UpdateLists(krgui::TreeItemInfo& aInfo) override { updatedLists.push_back(aInfo.GetDisplayName().ToUtf8()); }

  /// Selects the item of a text; null for nothing. As a toolkit does, it tells the change at once.
  void Select(Item* aItem) {
    if (selected == aItem)
      return;
    selected = aItem;
    if (onSelectionChange)
      onSelectionChange();
  }
  Item* Find(const KrString& aText) const {
    const auto place = std::ranges::find_if(items, [&](const auto& aItem) { return aItem->text == aText; });
    return place == items.end() ? nullptr : place->get();
  }

  /// "parent > text [icon]" in the order of appending.
  std::vector<std::string> Write() const {
    std::vector<std::string> lines;
    for (const auto& item : items)
      lines.push_back((item->parent ? item->parent->text.ToUtf8() + " > " : "") + item->text.ToUtf8() + " [" +
                      std::to_string(item->icon) + "]");
    return lines;
  }

  std::vector<std::unique_ptr<Item>> items;
  Item* selected = nullptr;
  std::function<void()> onSelectionChange;
  std::vector<std::string> updatedLists;
  int appendCount = 0;
  int deleteCount = 0;
  int syncCount = 0;
  int expandCount = 0;
};
