#include "report/comparison_view.h"

#include <array>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "report/number_text.h"
#include "report/turn.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
using Number = std::optional<double>;

constexpr double kMillimetresPerMetre = 1000;
constexpr double kSmall = 0.01;  // millimetres or degrees

Number Minus(const Number& a, const Number& b) {
  return a && b ? Number(*a - *b) : std::nullopt;
}

std::optional<Rotation> RotationAt(const Json& result, const std::string& path) {
  Rotation rotation = {};
  for (std::size_t i = 0; i < rotation.size(); ++i) {
    const Number number = NumberAt(result, At(path, i / 3 * 4 + i % 3));
    if (!number) {
      return std::nullopt;
    }
    rotation[i] = *number;
  }
  return rotation;
}

std::optional<Rotation> StatedRotation(const Json& result) {
  std::array<double, 3> degrees = {};
  for (std::size_t i = 0; i < degrees.size(); ++i) {
    const Number number = NumberAt(result, At("/inputs/chartRotationDegrees", i));
    if (!number) {
      return std::nullopt;
    }
    degrees[i] = *number;
  }
  return RotationOfAngles(degrees);
}

/// A row of the tables of section 6, which its charts are drawn from.
Json Component(const char* axis, const Number& one, const Number& other, const Number& difference,
               const Number& half, int decimals) {
  const auto raw = [](const Number& number) { return number ? Json(*number) : Json(); };
  return {{"axis", axis},
          {"one", one ? Json(Fixed(one, decimals)) : Json()},
          {"other", other ? Json(Fixed(other, decimals)) : Json()},
          {"difference", Fixed(difference, decimals)},
          // A perfect shoot is known better than the other decimals show.
          {"half", Fixed(half, half && *half < kSmall ? decimals + 2 : decimals)},
          {"rawDifference", raw(difference)},
          {"rawHalf", raw(half)}};
}

constexpr std::array<const char*, 3> kAxes = {"x", "y", "z"};

/// Shift rows and turn rows of one transform against the cross-check's.
/// @param shift Path of the other's translation: a list of 3, or of 16 where `isMatrix`.
/// @param turn From the cross-check's rotation to the other's; none where there is no other.
Json Components(const Json& result, const std::string& shift, bool isMatrix,
                const std::string& found, const std::string& errors,
                const std::optional<std::array<double, 3>>& turn) {
  const Number t95 = NumberAt(result, "/crossCheck/t95");
  Json shifts = Json::array();
  Json turns = Json::array();
  for (std::size_t i = 0; i < kAxes.size(); ++i) {
    const Number other =
        Times(NumberAt(result, At(shift, isMatrix ? 4 * i + 3 : i)), kMillimetresPerMetre);
    const Number one = Times(NumberAt(result, At(found, 4 * i + 3)), kMillimetresPerMetre);
    shifts.push_back(Component(kAxes[i], other, one, Minus(other, one),
                               Times(NumberAt(result, At(errors + "/shiftMm", i)), t95), 2));
    turns.push_back(Component(kAxes[i], {}, {}, turn ? Number((*turn)[i]) : std::nullopt,
                              Times(NumberAt(result, At(errors + "/turnDegrees", i)), t95), 3));
  }
  return {{"shifts", shifts}, {"turns", turns}, {"isCompared", turn.has_value()}};
}

}  // namespace

Json TransformComponents(const Json& result) {
  const auto one = RotationAt(result, "/transformCamTc");
  const auto found = RotationAt(result, "/crossCheck/transformCamTc");
  std::optional<std::array<double, 3>> turn;
  if (one && found) {
    turn = TurnDegrees(Product(*one, Inverse(*found)));
  }
  return Components(result, "/transformCamTc", true, "/crossCheck/transformCamTc",
                    "/crossCheck/standardErrorCamTc", turn);
}

Json MountingComponents(const Json& result) {
  const auto stated = StatedRotation(result);
  const auto found = RotationAt(result, "/crossCheck/transformTrChart");
  std::optional<std::array<double, 3>> turn;
  if (stated && found) {
    turn = TurnDegrees(Product(Inverse(*found), *stated));
  }
  return Components(result, "/inputs/chartTranslationMetres", false, "/crossCheck/transformTrChart",
                    "/crossCheck/standardErrorTrChart", turn);
}

}  // namespace trackedcam::report
