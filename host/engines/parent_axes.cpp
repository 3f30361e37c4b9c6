#include "host/engines/parent_axes.h"

#include <cmath>
#include <optional>
#include <sstream>

#include <Eigen/LU>

#include "host/input/input_error.h"

namespace trackedcam::host {
namespace {

using Eigen::Matrix3d;

std::optional<Eigen::RowVector3d> AxisFrom(std::string word) {
  const bool isOpposite = !word.empty() && word.front() == '-';
  word.erase(0, isOpposite ? 1 : 0);
  if (word.size() != 1 || word[0] < 'x' || word[0] > 'z') {
    return std::nullopt;
  }
  return (isOpposite ? -1 : 1) * Eigen::RowVector3d::Unit(word[0] - 'x');
}

std::optional<Matrix3d> AxesFrom(const std::string& text) {
  Matrix3d axes;
  std::istringstream words(text + ',');
  int row = 0;
  for (std::string word; std::getline(words, word, ','); ++row) {
    const auto axis = AxisFrom(word);
    if (!axis || row == 3) {
      return std::nullopt;
    }
    axes.row(row) = *axis;
  }
  return row == 3 ? std::optional<Matrix3d>(axes) : std::nullopt;
}

std::string TextOf(const Matrix3d& axes) {
  std::string text;
  for (int row = 0; row < 3; ++row) {
    Eigen::Index col = 0;
    axes.row(row).cwiseAbs().maxCoeff(&col);
    text += std::string(row == 0 ? "" : ",") + (axes(row, col) < 0 ? "-" : "") +
            static_cast<char>('x' + col);
  }
  return text;
}

}  // namespace

ParentAxes ParseParentAxes(const std::string& text, const std::string& zForward) {
  std::optional<Matrix3d> axes = AxesFrom(text);
  if (text == kZForward || text == kMinusZForward) {
    axes = AxesFrom(zForward);
    if (text == kMinusZForward) {
      axes->col(0) *= -1;
      axes->col(2) *= -1;
    }
  }
  if (!axes || axes->determinant() == 0) {
    throw InputError(text + " is not X,Y,Z in reported axes, such as " + zForward +
                     ", and neither " + kZForward + " nor " + kMinusZForward);
  }
  if (axes->determinant() > 0) {
    throw InputError(text +
                     " is right-handed, as the reported axes are, but the engine is left-handed: "
                     "one of the signs, or the order, is wrong");
  }
  return {TextOf(*axes), *axes};
}

}  // namespace trackedcam::host
