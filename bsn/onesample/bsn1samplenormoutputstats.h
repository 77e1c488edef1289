#pragma once
// BSN1SampleNormOutputStats: the result of the one-sample normal procedure,
// one entry per test variable in every vector (the getters and their
// guarantees are those of BSNNormalMeanOutputStats). Unlike the related-
// samples result it can be copied and refilled through the setters.
#include <iosfwd>

#include "bsn/onesample/bsnnormalmeanoutputstats.h"

namespace MCBSN_850 {

class BSN1SampleNormal;

class BSN1SampleNormOutputStats : public BSNNormalMeanOutputStats {
public:
    // Copies every result of a finished procedure.
    BSN1SampleNormOutputStats(const BSNSettings& settings, const BSN1SampleNormal& procedure);
    // An empty result to be filled through the setters below.
    explicit BSN1SampleNormOutputStats(const BSNSettings& settings);
    ~BSN1SampleNormOutputStats() override;
    BSN1SampleNormOutputStats(const BSN1SampleNormOutputStats& other);
    BSN1SampleNormOutputStats& operator=(const BSN1SampleNormOutputStats& other);

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::OneSample; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::Output1SampleNormal; }
    void Display(std::ostream& os) const override;

    // Replaces the settings, the test variables and the thirteen per-variable
    // vectors (not the curves).
    using BSNNormalMeanOutputStats::SetOutputValues;
    // Replaces the logs of the Bayes factors.
    using BSNNormalMeanOutputStats::SetLogBayesFactors;
    // Replaces the six curves.
    using BSNNormalMeanOutputStats::SetPlotValues;
    // The labelled lines of Display without its start and end lines. Writes
    // to the current dump stream.
    using BSNNormalMeanOutputStats::DisplayFields;
};

} // namespace MCBSN_850
