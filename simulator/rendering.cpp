#include "simulator/rendering.h"

#include <algorithm>
#include <cmath>

#include <opencv2/imgproc.hpp>

#include "simulator/random.h"

namespace trackedcam::simulator {
namespace {

constexpr float kBlack = 28;
constexpr float kWhite = 222;
// Samples along each side of a pixel that sees more than one colour.
constexpr int kSamples = 8;

// Smooth patches of several sizes, like a room out of focus.
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

// Full light at one corner of the image, less by the fraction `unevenness` at the opposite one.
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

// What the sensor makes of the light.
cv::Mat Sensed(cv::Mat& picture, const ShootOptions& options, Random& random) {
  Blur(picture, options.blurPixels);
  AddNoise(picture, options.noiseGreyLevels, random);
  cv::Mat grey;
  picture.convertTo(grey, CV_8U);
  return grey;
}

}  // namespace

ChartPainter::ChartPainter(const Chart& chart, const Lens& lens, int imageWidth, int imageHeight)
    : chart_(chart), lens_(lens), size_(imageWidth, imageHeight) {
  rays_.reserve((size_.width + 1) * static_cast<std::size_t>(size_.height + 1));
  for (int row = 0; row <= size_.height; ++row) {
    for (int col = 0; col <= size_.width; ++col) {
      const Eigen::Vector2d ray = lens_.Ray({col - 0.5, row - 0.5});
      rays_.push_back({ray.x(), ray.y()});
    }
  }
}

void ChartPainter::Paint(cv::Mat& picture, const Eigen::Isometry3d& Transform_Cam_Chart,
                         cv::Range rows) const {
  // `plane` maps the chart, in squares, to the plane z = 1; its inverse maps rays to the chart.
  Eigen::Matrix3d plane;
  plane << Transform_Cam_Chart.linear().leftCols<2>() * chart_.squareMetres,
      Transform_Cam_Chart.translation();
  plane.col(0) *= 1 + chart_.stretch;
  const Eigen::Matrix3d homography = plane.inverse();
  // A point of the bent paper that is a metre behind that plane appears so far from where it would
  // in the plane, in homogeneous coordinates of the chart.
  const Eigen::Vector3d perMetre = homography * Transform_Cam_Chart.linear().col(2);

  cv::Rect area = PaintedArea(Transform_Cam_Chart);
  if (rows != cv::Range::all()) {
    area &= cv::Rect(0, rows.start, size_.width, rows.size());
  }
  std::vector<ChartPoint> upper(area.width + 1);
  std::vector<ChartPoint> lower(area.width + 1);
  const auto rays = [&](int row) {
    return &rays_[row * static_cast<std::size_t>(size_.width + 1) + area.x];
  };
  ToChart(homography, perMetre, rays(area.y), lower);
  for (int row = area.y; row < area.y + area.height; ++row) {
    std::swap(upper, lower);
    ToChart(homography, perMetre, rays(row + 1), lower);
    float* pixels = picture.ptr<float>(row) + area.x;
    for (int col = 0; col < area.width; ++col) {
      pixels[col] = MeanLevel(&upper[col], &lower[col], pixels[col]);
    }
  }
}

cv::Rect ChartPainter::PaintedArea(const Eigen::Isometry3d& Transform_Cam_Chart) const {
  // Distortion bends the outline a little between its points.
  constexpr int kMargin = 8;
  Eigen::Array2d least = Eigen::Array2d::Constant(1e9);
  Eigen::Array2d most = -least;
  for (const Eigen::Vector3d& point : chart_.PaperOutline()) {
    const Eigen::Array2d pixel = lens_.Project(Transform_Cam_Chart * point);
    least = least.min(pixel);
    most = most.max(pixel);
  }
  const cv::Point first(cvFloor(least.x()) - kMargin, cvFloor(least.y()) - kMargin);
  const cv::Point last(cvCeil(most.x()) + kMargin, cvCeil(most.y()) + kMargin);
  return cv::Rect(first, last) & cv::Rect({0, 0}, size_);
}

void ChartPainter::ToChart(const Eigen::Matrix3d& homography, const Eigen::Vector3d& perMetre,
                           const Point* rays, std::vector<ChartPoint>& points) const {
  constexpr int kRounds = 8;  // each makes a place on bent paper at least four times more exact
  const double* h = homography.data();  // column by column
  const int width = chart_.cols + 2 * kBorderSquares + 3;
  const auto cell = [](double squares, int count) {
    return std::clamp(static_cast<int>(std::floor(squares)), -2 - kBorderSquares,
                      count + kBorderSquares);
  };
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto [rayX, rayY] = rays[i];
    const double depth = h[2] * rayX + h[5] * rayY + h[8];
    const double flatX = (h[0] * rayX + h[3] * rayY + h[6]) / depth;
    const double flatY = (h[1] * rayX + h[4] * rayY + h[7]) / depth;
    double x = flatX;
    double y = flatY;
    for (int round = 0; chart_.bowMetres != 0 && round < kRounds; ++round) {
      const double z = chart_.Depth(x, y);
      x = flatX + z * (flatX * perMetre.z() - perMetre.x());
      y = flatY + z * (flatY * perMetre.z() - perMetre.y());
    }
    points[i] = {x, y, cell(y, chart_.rows) * width + cell(x, chart_.cols)};
  }
}

float ChartPainter::MeanLevel(const ChartPoint* upper, const ChartPoint* lower,
                              float background) const {
  if (upper[0].cell == upper[1].cell && upper[0].cell == lower[0].cell &&
      upper[0].cell == lower[1].cell) {
    return Level(upper[0].x, upper[0].y, background);
  }
  float sum = 0;
  for (int j = 0; j < kSamples; ++j) {
    const double down = (j + 0.5) / kSamples;
    const double leftX = upper[0].x + down * (lower[0].x - upper[0].x);
    const double leftY = upper[0].y + down * (lower[0].y - upper[0].y);
    const double stepX = upper[1].x + down * (lower[1].x - upper[1].x) - leftX;
    const double stepY = upper[1].y + down * (lower[1].y - upper[1].y) - leftY;
    for (int i = 0; i < kSamples; ++i) {
      const double across = (i + 0.5) / kSamples;
      sum += Level(leftX + across * stepX, leftY + across * stepY, background);
    }
  }
  return sum / (kSamples * kSamples);
}

float ChartPainter::Level(double x, double y, float background) const {
  const auto isWithin = [&](int border) {
    return x >= -1 - border && x < chart_.cols + border && y >= -1 - border &&
           y < chart_.rows + border;
  };
  if (!isWithin(kBorderSquares)) {
    return background;
  }
  // + 1 makes the numbers positive, for which the conversion to int rounds down.
  const bool isBlack = (static_cast<int>(x + 1) + static_cast<int>(y + 1)) % 2 == 0;
  return isWithin(0) && isBlack ? kBlack : kWhite;
}

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
    Expose(picture, index);
  }
  LightUnevenly(picture, options.unevenLight, random);
  return Sensed(picture, options, random);
}

FrameRenderer::FrameRenderer(const Recording& recording)
    : recording_(recording),
      path_(PathOf(recording.options)),
      painter_(recording.options.shoot.chart, recording.lens, recording.options.shoot.imageWidth,
               recording.options.shoot.imageHeight) {
  const ShootOptions& shoot = recording.options.shoot;
  Random random(shoot.seed, Draw::kPicture);
  background_ = Background({shoot.imageWidth, shoot.imageHeight}, random);
}

cv::Mat FrameRenderer::Render(int index) const {
  const ShootOptions& shoot = recording_.options.shoot;
  cv::Mat picture = Exposed(recording_.frames.at(static_cast<std::size_t>(index)).time);
  Random light(shoot.seed, Draw::kPicture);  // the same in each frame
  LightUnevenly(picture, shoot.unevenLight, light);
  Random random(shoot.seed, Draw::kPicture, index + 1);
  return Sensed(picture, shoot, random);
}

// How far the chart moves in the image in this time around the middle of the frame's exposure.
double FrameRenderer::PixelsWithin(double frameTime, double seconds) const {
  const Eigen::Isometry3d before = path_.At(frameTime - seconds / 2).Transform_Cam_Chart;
  const Eigen::Isometry3d after = path_.At(frameTime + seconds / 2).Transform_Cam_Chart;
  double most = 0;
  for (const Eigen::Vector3d& corner : recording_.options.shoot.chart.Corners()) {
    const Eigen::Vector2d way =
        recording_.lens.Project(after * corner) - recording_.lens.Project(before * corner);
    most = std::max(most, way.norm());
  }
  return most;
}

// The mean over moments of the exposure, in bands of rows that are exposed together. The chart
// moves less than half a pixel from one moment or band to the next, unless it moves very fast.
cv::Mat FrameRenderer::Exposed(double frameTime) const {
  constexpr double kMostPixels = 0.5;
  constexpr int kMost = 64;
  const RecordingOptions& options = recording_.options;
  const auto parts = [&](double seconds) {
    return std::min(kMost, 1 + static_cast<int>(PixelsWithin(frameTime, seconds) / kMostPixels));
  };
  const int bands = parts(options.readoutSeconds);
  const int moments = parts(options.exposureSeconds);
  const int height = background_.rows;
  cv::Mat sum(background_.size(), CV_32F, cv::Scalar(0));
  cv::Mat picture;
  for (int moment = 0; moment < moments; ++moment) {
    background_.copyTo(picture);
    const double late = ((moment + 0.5) / moments - 0.5) * options.exposureSeconds;
    for (int band = 0; band < bands; ++band) {
      const cv::Range rows(height * band / bands, height * (band + 1) / bands);
      const double time = TimeOfRow(options, frameTime, (rows.start + rows.end - 1) / 2.0) + late;
      painter_.Paint(picture, path_.At(time).Transform_Cam_Chart, rows);
    }
    sum += picture;
  }
  return sum / moments;
}

// What moves during an exposure is the mean of where it is.
void PhotographRenderer::Expose(cv::Mat& picture, int index) const {
  const double exposure = shoot_.options.exposureMs;
  const int instants = exposure > 0 ? 9 : 1;  // a pixel or two apart
  const cv::Mat background = picture.clone();
  cv::Mat sum = cv::Mat::zeros(picture.size(), picture.type());
  for (int i = 0; i < instants; ++i) {
    background.copyTo(picture);
    const double before = exposure * ((i + 0.5) / instants - 0.5);
    painter_.Paint(picture, ChartBefore(shoot_, static_cast<std::size_t>(index), before));
    sum += picture;
  }
  picture = sum / instants;
}

}  // namespace trackedcam::simulator
