#pragma once
// BSN1SampleDiscretePosterior: base of the conjugate posterior workers of the
// one-sample binomial and Poisson analyses: per variable the posterior mode,
// mean, variance and equal-tailed credible limits, missing until computed.
#include <cstddef>
#include <ostream>
#include <vector>

#include "bsn/onesample/bsn1samplediscreteworker.h"
#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

template <class Counts>
class BSN1SampleDiscretePosterior : public BSN1SampleDiscreteWorker<Counts> {
public:
    const std::vector<double>& GetModeValues() const { return m_modes; }
    const std::vector<double>& GetMeanValues() const { return m_means; }
    const std::vector<double>& GetVarianceValues() const { return m_variances; }
    const std::vector<double>& GetLowerLimits() const { return m_lowerLimits; }
    const std::vector<double>& GetUpperLimits() const { return m_upperLimits; }

protected:
    using Base = BSN1SampleDiscreteWorker<Counts>;

    BSN1SampleDiscretePosterior(const BSNSettings& settings, const Counts& counts) : Base(settings, counts) {
        for (auto* v : {&m_modes, &m_means, &m_variances, &m_lowerLimits, &m_upperLimits})
            v->assign(counts.Size(), MCCommon_850::MCMV::Missing());
    }
    ~BSN1SampleDiscretePosterior() = default;

    // The conjugate prior's two parameters from the settings. Error 410017
    // when the prior type is not conjugate, error 410019 when a parameter is
    // missing; the status is also kept as the worker's own.
    MCCommon_850::MCStatus readPrior(double& a, double& b) {
        a = this->m_settings.GetPriorParam1();
        b = this->m_settings.GetPriorParam2();
        if (this->m_settings.GetPriorType() != BSNConst::Conjugate)
            this->m_status = MCCommon_850::MCStatus(410017, false);
        else if (MCCommon_850::MCMV::IsMissing(a) || MCCommon_850::MCMV::IsMissing(b))
            this->m_status = MCCommon_850::MCStatus(410019, false);
        else
            this->m_status = MCCommon_850::MCStatus();
        return this->m_status;
    }

    // Both credible limits of variable i from an inverse CDF `idf(p)`, with
    // tail mass (100 − GetCILevel())/100 split evenly.
    template <class Idf>
    void setLimits(std::size_t i, Idf idf) {
        const double half = (100.0 - this->m_settings.GetCILevel()) * 0.01 * 0.5;
        m_lowerLimits[i] = MCCommon_850::MCMV::Sanitize(idf(half));
        m_upperLimits[i] = MCCommon_850::MCMV::Sanitize(idf(1.0 - half));
    }

    void displaySummaries(std::ostream& os) const {
        this->displayWorker(os);
        MCDisplay_850::DisplayDV("Mode values", m_modes);
        MCDisplay_850::DisplayDV("Mean values", m_means);
        MCDisplay_850::DisplayDV("Variance values", m_variances);
        MCDisplay_850::DisplayDV("Lower limits", m_lowerLimits);
        MCDisplay_850::DisplayDV("Upper limits", m_upperLimits);
    }

    std::vector<double> m_modes;
    std::vector<double> m_means;
    std::vector<double> m_variances;
    std::vector<double> m_lowerLimits;
    std::vector<double> m_upperLimits;
};

} // namespace MCBSN_850
