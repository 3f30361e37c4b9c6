#include "trackedcam/trackedcam.h"

// The types and the order of the arguments, as hosts that look the function up by name cast it.
using Numbers = std::vector<double>;
int (*const calibration)(std::string, double, double, int, int, double, Numbers, Numbers, Numbers&,
                         Numbers&, Numbers&, Numbers&, Numbers&, Numbers&, Numbers&, std::string,
                         bool, int) = &Calibration;
