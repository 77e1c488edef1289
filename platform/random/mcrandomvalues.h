#pragma once
// MCRandomValues: seeded uniform, standard normal and gamma random values.
// The stream depends only on the seed: the engine is the 32-bit Mersenne
// Twister, whose output is fixed by its definition, and every transform on
// top of it is written out here rather than taken from a library whose
// algorithms may change between versions or platforms:
//   uniform  (k + 1/2) / 2^52 with k the top 26 bits of two successive
//            engine outputs, so a draw is never 0 or 1;
//   normal   Marsaglia's polar method, the second value of each pair kept
//            for the next call;
//   gamma    Marsaglia and Tsang's squeeze method for shape >= 1; for
//            shape < 1 a draw with shape + 1 times U^(1/shape).
#include <cstdint>
#include <iosfwd>

#include <boost/random/mersenne_twister.hpp>

namespace MCMath_850 {

class MCRandomValues {
public:
    static constexpr unsigned long kDefaultSeed = 2000000;

    MCRandomValues() { SetSeed(kDefaultSeed); }
    explicit MCRandomValues(unsigned long seed) { SetSeed(seed); }

    // Restarts the stream; the same seed always gives the same values.
    void SetSeed(unsigned long seed);
    unsigned long GetSeed() const { return m_seed; }

    // Uniform on the open interval (0, 1).
    double GetUniform();
    // Standard normal.
    double GetNormal();
    double GetNormal(double mean, double sd) { return mean + sd * GetNormal(); }

    // Gamma parameters by shape and rate (density proportional to
    // x^(shape-1) e^(-rate x)); accepted only when both are positive and
    // finite. The defaults are shape 1, rate 1.
    bool SetParamGamma(double shape, double rate);
    double GetGammaShape() const { return m_shape; }
    double GetGammaRate() const { return m_rate; }
    // A draw with the parameters set by SetParamGamma.
    double GetGamma() { return GetGamma(m_shape, m_rate); }
    // A draw with the given parameters (missing when they are not positive).
    double GetGamma(double shape, double rate);

    void Display(std::ostream& os) const;

private:
    double gammaAtLeastOne(double shape);

    boost::random::mt19937 m_engine;
    unsigned long m_seed = kDefaultSeed;
    bool m_hasSpareNormal = false;
    double m_spareNormal = 0.0;
    double m_shape = 1.0;
    double m_rate = 1.0;
};

} // namespace MCMath_850
