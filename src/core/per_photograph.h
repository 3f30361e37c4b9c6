// Element i of every list that has one element for each photograph belongs to the same photograph.

#pragma once

#include <cstddef>

namespace trackedcam {

/// Removes a photograph from all the given lists together; a list that ends before it stays as it
/// is.
template <class... Lists>
void RemovePhotograph(std::size_t index, Lists&... lists) {
  const auto remove = [index](auto& list) {
    if (index < list.size()) {
      list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    }
  };
  (remove(lists), ...);
}

}  // namespace trackedcam
