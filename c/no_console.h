// The library prints each line of its log. Inside the C library it prints to nobody: a host's
// standard output is the host's, and redirecting it would take the host's own lines as well.
//
// The build includes this file before the sources of the library that print. Within its namespace,
// std::cout is this one, without a state that threads could share.

#pragma once

#include <iostream>

namespace trackedcam::std {

using namespace ::std;

struct Nobody {};
inline constexpr Nobody cout = {};

template <class Value>
const Nobody& operator<<(const Nobody& nobody, const Value& /*value*/) {
  return nobody;
}

/// For std::endl.
inline const Nobody& operator<<(const Nobody& nobody,
                                ::std::ostream& (* /*manipulator*/)(::std::ostream&)) {
  return nobody;
}

}  // namespace trackedcam::std
