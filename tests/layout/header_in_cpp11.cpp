#include "trackedcam/trackedcam.h"

// Programs that look up the functions by name cast them to these types, which may not change.
using Numbers = std::vector<double>;
extern int (*const calibration)(std::string, double, double, int, int, double, Numbers, Numbers,
                                Numbers&, Numbers&, Numbers&, Numbers&, Numbers&, Numbers&,
                                Numbers&, std::string, bool, int) = &Calibration;
using Export = int (*)(Numbers, Numbers&, Numbers&, std::string);
extern const Export exports[] = {&CamAxisToUE4, &CamAxisToUE5, &CamAxisToUE5_ExportxN};
extern int (*const aximmetry)(Numbers, Numbers, Numbers, Numbers&, Numbers&, Numbers&, Numbers&,
                              std::string) = &CamAxisToAximmetry;
