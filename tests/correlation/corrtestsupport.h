#pragma once
// Shared pieces of the correlation tests: settings, a run of the procedure on
// in-memory columns, the tests/data readers and a rig for one task.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bsn/correlation/bsncorrtask.h"
#include "bsn/correlation/bsnpearsoncorrelation.h"
#include "bsn/correlation/bsnpearsoncorrelationoutputstats.h"
#include "tests/onesample/extremedata.h"
#include "tests/onesample/normaltestsupport.h"

namespace corrtest {

using namespace normaltest;  // BSNSettings, BC, MCMV, kMiss, moments
using MCBSN_850::BSNPearsonCorrelation;
using MCBSN_850::BSNPearsonCorrelationOutputStats;

inline BSNSettings corrSettings(std::vector<int> vars, BC::AnalysTypes type = BC::Both) {
    BSNSettings s;
    s.SetModelType(BC::Correlation, true); s.SetCovariates(vars); s.SetAnalysType(type);
    return s;
}

// The procedure run over columns it borrows (kept alive here).
struct CorrRun {
    CorrRun(const BSNSettings& settings, std::vector<std::vector<double>> cols, int blockSize = 0)
        : columns(std::move(cols)), iter(columns),
          procedure(settings, makeVarList(static_cast<int>(columns.size()))) {
        procedure.SetBlockSize(blockSize);
        status = procedure.BuildModel(iter);
    }
    const BSNPearsonCorrelationOutputStats& out() const {
        const auto* o = dynamic_cast<const BSNPearsonCorrelationOutputStats*>(procedure.GetOutputStats());
        if (o == nullptr) throw std::runtime_error("no result object");
        return *o;
    }
    std::vector<int> codes() const {
        std::vector<int> c;
        for (const auto& w : procedure.GetWarningMessages()) c.push_back(w.GetCode());
        return c;
    }
    // The warning of a code (which must be there once).
    MCCommon_850::MCStatus warning(int code) const {
        std::vector<MCCommon_850::MCStatus> found;
        for (const auto& w : procedure.GetWarningMessages())
            if (w.GetCode() == code) found.push_back(w);
        EXPECT_EQ(found.size(), 1u) << "warning " << code;
        return found.empty() ? MCCommon_850::MCStatus() : found[0];
    }

    std::vector<std::vector<double>> columns;
    MCCommon_850::ColumnRecordIter iter;
    BSNPearsonCorrelation procedure;
    MCCommon_850::MCStatus status;
};

// Rows of a tests/data CSV after its header; an empty field or NA is missing.
inline std::vector<extremedata::Row> readCsv(const std::string& name) { return extremedata::read(name); }
inline double number(const std::string& field) { return field.empty() || field == "NA" ? kMiss : std::stod(field); }

// Nothing NaN, infinite or absurd in any result vector.
inline void expectAllFinite(const BSNPearsonCorrelationOutputStats& o) {
    std::vector<const std::vector<double>*> all = {
        &o.GetPearsonCorrelation(), &o.GetBayesFactor(),      &o.GetLogBayesFactors(),     &o.GetVarPairN(),
        &o.GetPosteriorMode(),      &o.GetPosteriorMean(),    &o.GetPosteriorVariance(),   &o.GetPosteriorLowerBound(),
        &o.GetPosteriorUpperBound()};
    for (const auto* curves : {&o.GetPlotLogLikelihood(), &o.GetPlotPrior(), &o.GetPlotPosterior()})
        for (const auto& c : *curves) all.push_back(&c);
    for (std::size_t i = 0; i < all.size(); ++i)
        for (double x : *all[i]) EXPECT_TRUE(x == MCMV::Missing() || std::isfinite(x)) << "vector " << i;
}

// Inputs and result vectors for running BSNCorrTask on chosen (r, n) pairs.
struct TaskRig {
    TaskRig(std::vector<double> rs, std::vector<double> ns, int plotPoints = 0, int plotted = 0)
        : r(std::move(rs)), n(std::move(ns)) {
        const std::size_t P = r.size();
        pairs.assign(P, {0, 1});
        logSxxSyy.assign(P, 0.0);
        for (auto* v : {&bf, &logBF, &mode, &mean, &variance, &lower, &upper}) v->assign(P, kMiss);
        isLog.assign(P, 0);
        for (int i = 0; i < plotPoints; ++i) x.push_back(-1.0 + (i + 1) * 2.0 / (plotPoints + 1));
        for (auto* c : {&ll, &prior, &post}) c->assign(static_cast<std::size_t>(plotted), {});
    }
    std::unique_ptr<MCBSN_850::BSNCorrTask> task(const BSNSettings& s, int first, int count, unsigned long seed,
                                                 MCCommon_850::ProgressListener* listener = nullptr) {
        const MCBSN_850::BSNCorrTask::Inputs in{
            .pairs = &pairs, .correlations = &r, .ns = &n, .logSxxSyy = &logSxxSyy, .plotXAxis = &x};
        const MCBSN_850::BSNCorrTask::Outputs out{
            .bayesFactors = &bf, .isLogBayesFactor = &isLog, .logBayesFactors = &logBF, .modes = &mode,
            .means = &mean, .variances = &variance, .lowerBounds = &lower, .upperBounds = &upper,
            .plotLogLikelihood = &ll, .plotPrior = &prior, .plotPosterior = &post};
        return std::make_unique<MCBSN_850::BSNCorrTask>(first, count, listener, s, cancel, seed, in, out);
    }

    std::vector<std::pair<int, int>> pairs;
    std::vector<double> r, n, logSxxSyy, x;
    std::vector<double> bf, logBF, mode, mean, variance, lower, upper;
    std::vector<unsigned char> isLog;
    std::vector<std::vector<double>> ll, prior, post;
    MCMath_850::MCCancelInfo cancel;
};

} // namespace corrtest
