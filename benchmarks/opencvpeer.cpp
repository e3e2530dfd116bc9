// Conversions by OpenCV. It names the colours of a Bayer format by the pixels of the second line, and its conversions
// from YUV take luma from 16 to 235: they do as much work as ours, but give other colours.

#include "convertpeers.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>

namespace benchmarks {

namespace {

struct OpenCVRow {
  KrPixelType type;
  int matrixType;
  int code;
};

constexpr std::array kRows = {
    OpenCVRow{KrPixel::Mono8, CV_8UC1, cv::COLOR_GRAY2BGRA},
    OpenCVRow{KrPixel::BayerRG8, CV_8UC1, cv::COLOR_BayerBG2BGRA},
    OpenCVRow{KrPixel::RGB8, CV_8UC3, cv::COLOR_RGB2BGRA},
    OpenCVRow{KrPixel::BGR8, CV_8UC3, cv::COLOR_BGR2BGRA},
    OpenCVRow{KrPixel::RGBa8, CV_8UC4, cv::COLOR_RGBA2BGRA},
    OpenCVRow{KrPixel::BGR565p, CV_8UC2, cv::COLOR_BGR5652BGRA},
    OpenCVRow{KrPixel::YUV422_8, CV_8UC2, cv::COLOR_YUV2BGRA_YUYV},
    OpenCVRow{KrPixel::YUV422_8_UYVY, CV_8UC2, cv::COLOR_YUV2BGRA_UYVY},
    OpenCVRow{KrPixel::YCbCr601_422_8, CV_8UC2, cv::COLOR_YUV2BGRA_YUYV},
    OpenCVRow{KrPixel::YCbCr601_422_8_CbYCrY, CV_8UC2, cv::COLOR_YUV2BGRA_UYVY},
};

/// Grey in words of 16 bits needs two conversions.
struct OpenCVDeepRow {
  KrPixelType type;
  double scale;
};

constexpr std::array kDeepRows = {
    OpenCVDeepRow{KrPixel::Mono10, 1.0 / 4},
    OpenCVDeepRow{KrPixel::Mono12, 1.0 / 16},
    OpenCVDeepRow{KrPixel::Mono14, 1.0 / 64},
    OpenCVDeepRow{KrPixel::Mono16, 1.0 / 256},
};

template <typename Rows>
auto FindRow(const Rows& aRows, KrPixelType aType) {
  const auto row = std::find_if(aRows.begin(), aRows.end(), [aType](const auto& aRow) { return aRow.type == aType; });
  return row != aRows.end() ? &*row : nullptr;
}

} // namespace

PeerConversion FindOpenCVConversion(const ConversionTask& aTask, int aThreads) {
  cv::setNumThreads(aThreads); // Until the next one is looked for.
  const cv::Size size(static_cast<int>(aTask.width), static_cast<int>(aTask.height));
  cv::Mat destination(size, CV_8UC4, aTask.destination);
  if (aTask.type == KrPixel::BGRa8) {
    const cv::Mat source(size, CV_8UC4, aTask.source);
    return [source, destination]() mutable { source.copyTo(destination); };
  }
  if (const auto* row = FindRow(kRows, aTask.type)) {
    const cv::Mat source(size, row->matrixType, aTask.source);
    return [source, destination, code = row->code]() mutable { cv::cvtColor(source, destination, code); };
  }
  if (const auto* row = FindRow(kDeepRows, aTask.type)) {
    const cv::Mat source(size, CV_16UC1, aTask.source);
    return [source, destination, scale = row->scale, grey = cv::Mat()]() mutable {
      source.convertTo(grey, CV_8U, scale);
      cv::cvtColor(grey, destination, cv::COLOR_GRAY2BGRA);
    };
  }
  return {};
}

} // namespace benchmarks
