// The photographs that the user leaves out, by the names that people write.

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace trackedcam::host {

/// Indices of the photographs, ascending, that the names mean. A name is a path as the data file
/// has it, or the end of one from a folder on, with or without the file's ending: img_003,
/// img_003.jpg, photos/img_003.jpg. A photograph that several rows have is one photograph.
/// @param photographs Paths; an empty one is no photograph.
/// @throws InputError if a name means no photograph, or more than one.
std::vector<std::size_t> FindExcluded(const std::vector<std::string>& photographs,
                                      const std::vector<std::string>& names);

/// The shortest name that means this photograph and no other.
/// @param photographs One of them is the photograph.
std::string ShortestName(const std::string& photograph,
                         const std::vector<std::string>& photographs);

}  // namespace trackedcam::host
