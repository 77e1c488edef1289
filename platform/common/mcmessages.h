#pragma once
// Messages of the platform's own status codes (the library's codes
// 410001-410060 have their own table). Codes in use:
//   420001  numerical integration stopped at its iteration limit (warning)
//   420010  correlation JZS integral cut at g = 1e6 leaves out > 1e-6 of its mass (warning)
//   420011  the same, more than 1% (warning)
//   102     a factor or covariate of a PMML model is not in the variable list (error)
//   303     a PMML document could not be written (error)
//   420040  log-linear: records with an invalid factor code or weight left out (warning; datum 0 = count)
//   420041  log-linear: pairs of categories without a proper posterior (warning)
//   420042  log-linear: too many pairs of categories for posterior estimates (warning)
#include <string>

namespace MCCommon_850 {

// Fills text with the message of a platform code and returns true; returns
// false and leaves text unchanged for any other code.
bool PlatformMessage(int code, std::string& text);

} // namespace MCCommon_850
