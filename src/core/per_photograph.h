// Lists with one element for each photograph: element i of all of them belongs to one photograph.

#pragma once

#include <cstddef>

namespace trackedcam {

/// Removes the photograph at this index from every given list. A list that is too short stays
/// unchanged.
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
