#pragma once
// BSN1SampleDiscreteFactor: base of the Bayes-factor workers of the
// one-sample binomial and Poisson analyses: per variable a factor (null over
// alternative) and a bit telling that the stored number is its natural log,
// and beside them the natural log of every factor, whatever its size.
#include <cstddef>
#include <ostream>
#include <vector>

#include "bsn/onesample/bsn1samplediscreteutils.h"
#include "bsn/onesample/bsn1samplediscreteworker.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

template <class Counts>
class BSN1SampleDiscreteFactor : public BSN1SampleDiscreteWorker<Counts> {
public:
    const std::vector<double>& GetBayesFactors() const { return m_bayesFactors; }
    const std::vector<bool>& GetIsLogBayesFactor() const { return m_isLog; }
    // ln of each factor as computed (never the log of a rounded factor);
    // missing where no factor was computed.
    const std::vector<double>& GetLogBayesFactors() const { return m_logFactors; }

protected:
    using Base = BSN1SampleDiscreteWorker<Counts>;

    // The prior parameters of variable i: null (a0, b0), 2.0 each when not
    // given, and alternative (a1, b1), missing when not given.
    struct Priors {
        double a0, b0, a1, b1;
    };

    explicit BSN1SampleDiscreteFactor(const BSNSettings& settings, const std::vector<int>& varIndices)
        : Base(settings, Counts(varIndices)), m_bayesFactors(varIndices.size(), MCCommon_850::MCMV::Missing()),
          m_isLog(varIndices.size(), false), m_logFactors(varIndices.size(), MCCommon_850::MCMV::Missing()) {}
    ~BSN1SampleDiscreteFactor() = default;

    Priors priorsOf(std::size_t i) const {
        using U = BSN1SampleDiscreteUtils;
        constexpr double kDefaultNull = 2.0;
        const double missing = MCCommon_850::MCMV::Missing();
        return {U::ListValue(this->m_settings.GetNullPrior1s(), i, kDefaultNull),
                U::ListValue(this->m_settings.GetNullPrior2s(), i, kDefaultNull),
                U::ListValue(this->m_settings.GetAlterPrior1s(), i, missing),
                U::ListValue(this->m_settings.GetAlterPrior2s(), i, missing)};
    }

    // Stores variable i's factor from its log (missing leaves it missing).
    void storeFactor(std::size_t i, double logBF) {
        bool isLog = false;
        if (BSN1SampleDiscreteUtils::StoreFactor(logBF, m_bayesFactors[i], isLog)) m_anyLog = true;
        m_isLog[i] = isLog;
        m_logFactors[i] = MCCommon_850::MCMV::Sanitize(logBF);
    }

    // After the last variable: warning 410041 once when any log was stored.
    void finishFactors() {
        if (m_anyLog) this->m_warnings.AddWarning(MCCommon_850::MCStatus(410041, true), nullptr);
    }

    void displayFactors(std::ostream& os) const {
        this->displayWorker(os);
        MCDisplay_850::DisplayDV("Bayes factors", m_bayesFactors);
        MCDisplay_850::DisplayBV("Is log Bayes factor", m_isLog);
        MCDisplay_850::DisplayDV("Log Bayes factors", m_logFactors);
    }

private:
    std::vector<double> m_bayesFactors;
    std::vector<bool> m_isLog;
    std::vector<double> m_logFactors;
    bool m_anyLog = false;
};

} // namespace MCBSN_850
