#pragma once
// The rules of the view geometry written down once more, line by line and as plainly as can be, to compare with. For
// moderate sizes and factors: little here is guarded against overflow.

#include "logic/display/viewgeometry.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

namespace plain {

struct Bar {
  int maximum = 0, page = 0, position = 0;
};

struct Rect {
  int left = 0, top = 0, right = 0, bottom = 0;
};

struct View {
  // 0 Fit, 1 one to one, 2 custom.
  int mode = 0;
  double factor = 1.0, previousFactor = 1.0;
  bool dirty = false;
  Rect client, view, destination, source, corner;
  Bar hBar, vBar;
  bool hPlaced = false, vPlaced = false;
  Rect hPlace, vPlace;
  int hMax = 0, vMax = 0;
  int hPos = INT_MIN, vPos = INT_MIN;
  double hRel = 0, vRel = 0;
  int hShown = 0, vShown = 0;
  std::vector<int> posted;
  std::vector<std::string> warnings;

  // Positions far outside their range are cut to what an integer holds.
  static int Int(double aValue) {
    return static_cast<int>(std::min(std::max(aValue, double(INT_MIN)), double(INT_MAX)));
  }
  static int Pos(double aValue) { return std::isfinite(aValue) ? Int(aValue) : INT_MIN; }

  void SetBar(Bar& aBar, int aMax, int aPage, int aPosition) {
    aBar.page = aPage < 0 ? 0 : aPage;
    aBar.maximum = aMax + aBar.page;
    MoveBar(aBar, aPosition);
  }
  static void MoveBar(Bar& aBar, int aPosition) { aBar.position = std::min(std::max(aPosition, 0), aBar.maximum); }

  void Update(int W, int H) {
    posted.clear();
    warnings.clear();
    hPlaced = vPlaced = false;
    corner = Rect{};
    const int cw = client.right, ch = client.bottom;
    view = client;
    destination = client;
    source = Rect{0, 0, W, H};

    if (mode == 2) {
      bool fits;
      if (cw > factor * W)
        fits = double(ch) / H * W >= factor * W;
      else
        fits = double(cw) / W * H >= factor * H;
      if (fits)
        mode = 0;
    }
    if (mode == 1)
      factor = 1.0;
    if (mode == 0)
      factor = 1 / std::max(double(W) / cw, double(H) / ch);

    const int zw = Int(W * factor + 0.5), zh = Int(H * factor + 0.5);
    if (zh > ch) {
      view.right -= 18;
      destination.right -= 18;
    }
    if (zw > cw) {
      view.bottom -= 18;
      destination.bottom -= 18;
      corner = Rect{client.right - 18, client.bottom - 18, client.right, client.bottom};
    }
    const int vw = view.right, vh = view.bottom;
    const bool setsBars = mode != 0 && (factor != previousFactor || dirty);

    if (Int(W * factor + 0.5) <= vw) {
      posted.push_back(0x1001);
      destination.left = Int(vw * 0.5 - W * factor * 0.5 + 0.5);
      destination.right = Int(vw * 0.5 + W * factor * 0.5 + 0.5);
    } else {
      if (setsBars) {
        const bool none = hPos == INT_MIN;
        hMax = Int(W * factor - vw);
        hPos = Pos(hMax * hRel);
        hPlaced = true;
        hPlace = Rect{0, vh, vw, vh + 18};
        SetBar(hBar, hMax, vw / 4, hPos);
        if ((hShown == 0 && zw > cw) || hPos == INT_MIN || none) {
          hPos = Int(hMax * 0.5);
          MoveBar(hBar, hPos);
          hRel = double(hPos) / hMax;
        }
      }
      const double offset = std::trunc(hPos - hMax * 0.5);
      source.left = Int((W * factor * 0.5 - vw * 0.5 + offset) / factor + 0.5);
      source.right = Int((vw * 0.5 + W * factor * 0.5 + offset) / factor + 0.5);
      if (source.left < 0 || source.left > W) {
        warnings.push_back("Coordinates out of bounds left=" + std::to_string(source.left));
        source.left = 0;
      }
      if (source.right < 0 || source.right > W) {
        warnings.push_back("Coordinates out of bounds right=" + std::to_string(source.right) +
                           " mBufferWidth=" + std::to_string(W));
        source.right = W;
      }
      if (source.right < source.left) {
        warnings.push_back("Invalid rect: left=" + std::to_string(source.left) +
                           ", right=" + std::to_string(source.right));
        source.left = 0;
        source.right = W;
      }
    }

    if (Int(H * factor + 0.5) <= vh) {
      posted.push_back(0x1002);
      destination.top = Int(vh * 0.5 - H * factor * 0.5 + 0.5);
      destination.bottom = Int(vh * 0.5 + H * factor * 0.5 + 0.5);
    } else {
      if (setsBars) {
        const bool none = vPos == INT_MIN;
        vMax = Int(H * factor - vh + 0.5);
        vPos = Pos(vMax * vRel + 0.5);
        vPlaced = true;
        vPlace = Rect{vw, 0, vw + 18, vh};
        SetBar(vBar, vMax, vh / 4, vPos);
        if ((vShown == 0 && zh > ch) || vPos == INT_MIN || none) {
          vPos = vMax >> 1;
          MoveBar(vBar, vPos);
          vRel = double(vPos) / vMax;
        }
      }
      const long long offset = static_cast<long long>(vMax) - (vMax >> 1) - vPos;
      source.top = Int((H * factor * 0.5 - vh * 0.5 + offset) / factor + 0.5);
      source.bottom = Int((vh * 0.5 + H * factor * 0.5 + offset) / factor + 0.5);
      if (source.top < 0 || source.top > H) {
        warnings.push_back("Coordinates out of bounds top=" + std::to_string(source.top));
        source.top = 0;
      }
      if (source.bottom < 0 || source.bottom > H) {
        warnings.push_back("Coordinates out of bounds bottom=" + std::to_string(source.bottom) +
                           " mBufferHeight=" + std::to_string(H));
        source.bottom = H;
      }
      if (source.bottom < source.top) {
        warnings.push_back("Invalid rect. top=" + std::to_string(source.top) +
                           " bottom=" + std::to_string(source.bottom));
        source.top = 0;
        source.bottom = H;
      }
    }

    hShown = zw > cw ? 18 : 0;
    vShown = zh > ch ? 18 : 0;
    previousFactor = factor;
    dirty = false;
  }

  static void Scroll(Bar& aBar, int aMax, int& aPos, double& aRel, int aCode, int aThumb) {
    int p = aBar.position;
    if (aCode == 0 && p > 0)
      p = p - 1;
    else if (aCode == 1 && p < aMax)
      p = p + 1;
    else if (aCode == 2)
      p = p - aBar.page;
    else if (aCode == 3)
      p = unsigned(p + aBar.page) < unsigned(aMax) ? p + aBar.page : aMax;
    else if (aCode == 4 || aCode == 5)
      p = aThumb;
    else if (aCode == 6)
      p = 0;
    else if (aCode == 7)
      p = aMax;
    if (aMax != 0) {
      MoveBar(aBar, p);
      aPos = p;
      aRel = double(p) / aMax;
    }
  }

  void CentreOn(int aX, int aY) {
    hPos = (aX - client.right / 2) + hBar.position;
    vPos = (aY - client.bottom / 2) + vBar.position;
    MoveBar(hBar, hPos);
    MoveBar(vBar, vPos);
    hRel = double(hPos) / hMax;
    vRel = double(vPos) / vMax;
  }
};

} // namespace plain
