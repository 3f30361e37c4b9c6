#include "simulator/photograph_renderer.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "simulator/random.h"

namespace trackedcam::simulator {
namespace {

// Smooth patches of all sizes, like a room out of focus.
cv::Mat Background(cv::Size size, Random& random) {
  cv::Mat background(size, CV_32F, cv::Scalar(95));
  for (const int patches : {3, 7, 16}) {
    cv::Mat coarse(patches, patches * 2, CV_32F);
    std::generate(coarse.begin<float>(), coarse.end<float>(),
                  [&] { return static_cast<float>(random.Uniform(-75, 75) / std::sqrt(patches)); });
    cv::Mat fine;
    cv::resize(coarse, fine, size, 0, 0, cv::INTER_CUBIC);
    background += fine;
  }
  return background;
}

// Full at one corner of the picture, and less by the given part at the opposite one.
void LightUnevenly(cv::Mat& picture, double unevenness, Random& random) {
  const auto share = static_cast<float>(random.Uniform(0, 1));
  const bool fromRight = random.Uniform(0, 1) < 0.5;
  const bool fromBelow = random.Uniform(0, 1) < 0.5;
  const auto loss = static_cast<float>(unevenness);
  const auto distance = [](int i, int count, bool reversed) {
    return static_cast<float>(reversed ? count - 1 - i : i) / static_cast<float>(count);
  };
  for (int row = 0; row < picture.rows; ++row) {
    auto* pixels = picture.ptr<float>(row);
    const float down = (1 - share) * distance(row, picture.rows, fromBelow);
    for (int col = 0; col < picture.cols; ++col) {
      pixels[col] *= 1 - loss * (down + share * distance(col, picture.cols, fromRight));
    }
  }
}

void Blur(cv::Mat& picture, double pixels) {
  if (pixels > 0) {
    cv::GaussianBlur(picture, picture, {0, 0}, pixels);
  }
}

void AddNoise(cv::Mat& picture, double greyLevels, Random& random) {
  if (greyLevels > 0) {
    cv::Mat noise(picture.size(), CV_32F);
    cv::RNG(random.Bits()).fill(noise, cv::RNG::NORMAL, 0, greyLevels);
    picture += noise;
  }
}

}  // namespace

PhotographRenderer::PhotographRenderer(const Shoot& shoot)
    : shoot_(shoot),
      painter_(shoot.options.chart, shoot.lens, shoot.options.imageWidth,
               shoot.options.imageHeight) {}

cv::Mat PhotographRenderer::Render(int index) const {
  const ShootOptions& options = shoot_.options;
  const Photograph& photograph = shoot_.photographs.at(static_cast<std::size_t>(index));
  Random random(options.seed, Draw::kPicture, index);

  cv::Mat picture = Background({options.imageWidth, options.imageHeight}, random);
  if (photograph.flaw != Flaw::kWithoutChart) {
    painter_.Paint(picture, photograph.Transform_Cam_Chart);
  }
  LightUnevenly(picture, options.unevenLight, random);
  Blur(picture, options.blurPixels);
  AddNoise(picture, options.noiseGreyLevels, random);
  cv::Mat grey;
  picture.convertTo(grey, CV_8U);
  return grey;
}

}  // namespace trackedcam::simulator
