#pragma once
// Natural-log exponent limits of double precision. A quantity whose logarithm
// lies outside [gMachineMinExp, gMachineMaxExp] would underflow or overflow
// when exponentiated, so procedures keep its logarithm instead. The limits sit
// just inside log(DBL_MIN) = -708.396 and log(DBL_MAX) = 709.783 so that
// exp() of any value within them is a normal, finite double.
namespace MCMath_850 {

struct MCPower {
    static constexpr double gMachineMinExp = -708.0;
    static constexpr double gMachineMaxExp = 709.0;
};

} // namespace MCMath_850
