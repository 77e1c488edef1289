#pragma once
// BSN2SampleRelatedOutputStats: the result of the related-samples procedure,
// one entry per pair in every vector. It carries the same statistics as the
// one-sample normal result (the getters of BSNNormalMeanOutputStats),
// computed on the paired differences: the means are mean differences,
// GetVarIndices() lists the first members of the pairs and
// GetSecondVarIndices() the second.
#include <iosfwd>
#include <memory>
#include <vector>

#include "bsn/onesample/bsnnormalmeanoutputstats.h"

namespace MCBSN_850 {

class BSN2SampleRelated;
class BSN2SampleRelatedOutputStatsImp;

class BSN2SampleRelatedOutputStats : public BSNNormalMeanOutputStats {
public:
    // Copies every result of a finished procedure.
    BSN2SampleRelatedOutputStats(const BSNSettings& settings, const BSN2SampleRelated& procedure);
    ~BSN2SampleRelatedOutputStats() override;
    BSN2SampleRelatedOutputStats(const BSN2SampleRelatedOutputStats&) = delete;
    BSN2SampleRelatedOutputStats& operator=(const BSN2SampleRelatedOutputStats&) = delete;

    BSNConst::ModelTypes GetModelType() const override { return BSNConst::Related; }
    BSNConst::OutputTypes GetOutputType() const override { return BSNConst::Output2SampleRelated; }
    void Display(std::ostream& os) const override;

    const std::vector<int>& GetSecondVarIndices() const;

private:
    std::unique_ptr<BSN2SampleRelatedOutputStatsImp> m_imp;
};

} // namespace MCBSN_850
