#pragma once
// BSN1SampleDiscreteOutputData: the part of the one-sample binomial and
// Poisson results that both share: the settings in force, the test
// variables, the Bayes factors with their log bits and logs, the sums of weights and
// the posterior summaries. Every entry starts missing and every value copied
// in is sanitised, so no NaN or infinity can reach a host.
#include <vector>

#include "bsn/frame/bsnsettings.h"
#include "bsn/onesample/bsn1samplediscretefactor.h"
#include "bsn/onesample/bsn1samplediscreteposterior.h"
#include "bsn/onesample/bsn1samplediscreteutils.h"

namespace MCBSN_850 {

struct BSN1SampleDiscreteOutputData {
    BSN1SampleDiscreteOutputData(const BSNSettings& settings, const std::vector<int>& varIndices);

    std::size_t Size() const { return varIndices.size(); }

    template <class Counts>
    void CopyFactors(const BSN1SampleDiscreteFactor<Counts>& factor) {
        if (factor.GetBayesFactors().size() != Size()) return;
        bayesFactors = MCCommon_850::MCMV::Sanitize(factor.GetBayesFactors());
        isLogBayesFactor = factor.GetIsLogBayesFactor();
        logBayesFactors = MCCommon_850::MCMV::Sanitize(factor.GetLogBayesFactors());
    }

    template <class Counts>
    void CopySummaries(const BSN1SampleDiscretePosterior<Counts>& posterior) {
        if (posterior.GetModeValues().size() != Size()) return;
        modes = MCCommon_850::MCMV::Sanitize(posterior.GetModeValues());
        means = MCCommon_850::MCMV::Sanitize(posterior.GetMeanValues());
        variances = MCCommon_850::MCMV::Sanitize(posterior.GetVarianceValues());
        lowerLimits = MCCommon_850::MCMV::Sanitize(posterior.GetLowerLimits());
        upperLimits = MCCommon_850::MCMV::Sanitize(posterior.GetUpperLimits());
    }

    // Labelled lines of the shared fields (to the current dump stream).
    void DisplayFactors() const;
    void DisplaySummaries() const;

    BSNSettings settings;
    std::vector<int> varIndices;
    std::vector<double> bayesFactors;
    std::vector<bool> isLogBayesFactor;
    std::vector<double> logBayesFactors;
    std::vector<double> ns;
    std::vector<double> modes, means, variances, lowerLimits, upperLimits;
};

} // namespace MCBSN_850
