#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "bsn/frame/bsnalgorithm.h"
#include "bsn/frame/bsncomponent.h"
#include "bsn/frame/bsncomponentdisplay.h"
#include "bsn/frame/bsnsettings.h"
#include "tests/frame/componentrun.h"

using namespace MCBSN_850;
using MCCommon_850::MCMV;
using MCCommon_850::MCStatus;
using S = BSNSettings;

namespace {

// Sums the weights and weighted values of variable 0 in one pass, then runs scripted
// stage statuses: the frame's bookkeeping without any statistics.
struct ScriptedProcedure : BSNAlgorithm {
    ScriptedProcedure(const BSNSettings& s, std::vector<MCStatus> stages, FinalReport rule = FinalReport::Always)
        : BSNAlgorithm(s, MCXML_850::MCVarList()), stages(std::move(stages)), rule(rule) {}

    MCStatus BuildModel(MCCommon_850::MultiPassRecordIter& iter) override {
        const auto add = [this](const MCCommon_850::Record& r, double w) {
            sumWeights += w;
            sumValues += w * r.GetValue(0);
            ++used;
        };
        if (!TakeStageStatus(RunDataPass(iter, add, rule))) return FinishBuild();
        for (const MCStatus& stage : stages) {
            ++stagesRun;
            if (!TakeStageStatus(stage)) break;
        }
        return FinishBuild();
    }
    void Display(std::ostream&) const override {}

    std::vector<MCStatus> stages;
    FinalReport rule;
    double sumWeights = 0, sumValues = 0;
    int used = 0, stagesRun = 0;
};

// Yields a null record at one row (0-based), as a source with gaps may.
struct GappyIter : MCCommon_850::ColumnRecordIter {
    GappyIter(const std::vector<std::vector<double>>& cols, std::size_t gap) : ColumnRecordIter(cols), gap(gap) {}
    void Reset() override { ColumnRecordIter::Reset(), row = 0; }
    bool Advance() override { return ++row, ColumnRecordIter::Advance(); }
    const MCCommon_850::Record* GetRecord() const override {
        return row - 1 == gap ? nullptr : ColumnRecordIter::GetRecord();
    }
    std::size_t gap, row = 0;
};

BSNSettings binomial(int nFactors, BSNConst::AnalysTypes type) {
    BSNSettings s;
    s.SetTestDistType(BSNConst::Binomial);
    std::vector<int> factors;
    for (int i = 0; i < nFactors; ++i) factors.push_back(10 + i);
    s.SetFactors(factors);
    s.SetFactorNCategs(std::vector<int>(nFactors, 2));
    s.SetAnalysType(type);
    return s;
}

// An error with this code (and datum 0 when given), or no error at all for code 0.
void expectError(const MCStatus& st, int code, int datum = -1) {
    EXPECT_EQ(st.IsError(), code != 0) << "code " << st.GetCode();
    EXPECT_EQ(st.GetCode(), code);
    if (datum >= 0) {
        EXPECT_EQ(st.GetDiscreteDatum(0), datum);
    }
}

// Applies each change in turn to the one settings record and validates after it.
struct Step {
    std::function<void(BSNSettings&)> change;
    int code, datum = -1;
};
void walk(BSNSettings& s, std::initializer_list<Step> steps) {
    for (const Step& step : steps) {
        SCOPED_TRACE(testing::Message() << "step " << (&step - steps.begin()));
        step.change(s);
        expectError(s.IsValidSettings(), step.code, step.datum);
    }
}

} // namespace

TEST(Frame, FrequencyWeightsRoundHalfUp) {
    // Half up; below a half, negative and missing are zero; beyond the int
    // range the weight stays exact.
    const std::pair<double, double> cases[] = {{2.4, 2}, {2.5, 3}, {0.5, 1}, {0.49, 0}, {-3, 0},
                                               {MCMV::Missing(), 0}, {5e9 + 0.2, 5e9}};
    for (const auto& [w, rounded] : cases) EXPECT_EQ(BSNAlgorithm::RoundFrequencyWeight(w), rounded) << w;

    // One pass: weights 0 are counted in the progress but not used; a null
    // record (the last) is neither.
    bsntest::RecordCounts listener;
    BSNSettings s;
    s.SetProgressListener(&listener);
    s.SetProgressFrequency(3);
    s.SetFrequencyWeightVar(1);
    std::vector<std::vector<double>> cols{{1, 2, 3, 4, 5, 6, 7}, {2.4, 2.5, 0.49, -3, MCMV::Missing(), 1, 1}};
    GappyIter iter(cols, 6);
    ScriptedProcedure p(s, {});
    EXPECT_TRUE(p.BuildModel(iter).IsOK());
    EXPECT_EQ(p.used, 3);
    EXPECT_EQ(p.sumWeights, 2 + 3 + 1);
    EXPECT_EQ(p.sumValues, 1 * 2 + 2 * 3 + 6 * 1);
    EXPECT_EQ(listener.counts, (std::vector<int>{3, 6, 6}));
}

TEST(Frame, WarningsCollectedInOrderAndErrorEndsBuild) {
    std::vector<std::vector<double>> cols{{1, 2}};
    MCCommon_850::ColumnRecordIter iter(cols);
    MCStatus w1(410041, true), w2(410037, true), err(410019, false), w3(410018, true);
    w2.SetDiscreteDatum(0, 4);
    w2.SetDiscreteDatum(99, 3);  // out of range: ignored
    ScriptedProcedure p(BSNSettings(), {w1, w2, err, w3});
    EXPECT_EQ(p.BuildModel(iter).GetCode(), 410019);
    EXPECT_EQ(p.GetStatus().GetCode(), 410019);
    EXPECT_FALSE(p.IsModelBuilt());
    EXPECT_EQ(p.stagesRun, 3);  // the stage after the error never ran
    ASSERT_EQ(p.GetWarningMessages().Size(), 2u);
    EXPECT_EQ(p.GetWarningMessages().Get(0).GetCode(), 410041);
    EXPECT_EQ(p.GetWarningMessages().Get(1).GetCode(), 410037);
    EXPECT_EQ(p.GetWarningMessages().Get(1).GetDiscreteDatum(0), 4);
    EXPECT_FALSE(p.GetWarningMessages().Get(1).HasDiscreteDatum(99));
    EXPECT_EQ(p.GetWarningMessages().Get(1).GetDiscreteDatum(99), -1);

    // Warnings alone leave the status clear and the model built.
    ScriptedProcedure ok(BSNSettings(), {w1, w3});
    EXPECT_TRUE(ok.BuildModel(iter).IsOK() && ok.GetStatus().IsOK());
    EXPECT_TRUE(ok.IsModelBuilt());
    EXPECT_EQ(ok.GetWarningMessages().Size(), 2u);
}

TEST(Frame, ProgressReportsEveryFrequencyAndAtTheEnd) {
    using Rule = BSNAlgorithm::FinalReport;
    struct Case {
        int nRecords;
        Rule rule;
        std::vector<int> expected;
    };
    // The final report always comes under Always, even when the last record
    // was just reported; under IfPending only when something is new.
    for (const Case& c : {Case{7, Rule::Always, {3, 6, 7}}, Case{6, Rule::Always, {3, 6, 6}},
                          Case{6, Rule::IfPending, {3, 6}}, Case{7, Rule::IfPending, {3, 6, 7}}}) {
        bsntest::RecordCounts listener;
        BSNSettings s;
        s.SetProgressListener(&listener);
        s.SetProgressFrequency(3);
        std::vector<std::vector<double>> cols{std::vector<double>(c.nRecords, 1.0)};
        MCCommon_850::ColumnRecordIter iter(cols);
        ScriptedProcedure p(s, {}, c.rule);
        p.BuildModel(iter);
        EXPECT_EQ(listener.counts, c.expected) << c.nRecords;
    }
}

TEST(Frame, CancellationInsideAPassGivesCodeOne) {
    bsntest::CancelAfter cancel(3);
    BSNSettings s;
    s.SetCancelPointer(&cancel);
    std::vector<std::vector<double>> cols{{1, 2, 3, 4, 5, 6}};
    MCCommon_850::ColumnRecordIter iter(cols);
    ScriptedProcedure p(s, {MCStatus(410041, true)});
    const MCStatus st = p.BuildModel(iter);
    EXPECT_TRUE(st.IsError() && st.GetCode() == 1) << st.GetCode();
    EXPECT_EQ(p.used, 3);
    EXPECT_EQ(p.stagesRun, 0);
    EXPECT_FALSE(p.IsModelBuilt());

    // Set later through SetCancelPtr, from "another thread" (an atomic flag).
    MCCommon_850::MCAtomicCancel flag;
    flag.Cancel();
    ScriptedProcedure q(BSNSettings(), {});
    q.SetCancelPtr(&flag);
    EXPECT_EQ(q.BuildModel(iter).GetCode(), 1);
    EXPECT_EQ(q.used, 0);
}

TEST(Frame, ComponentWithoutProcedureIsInert) {
    BSNSettings s;
    s.SetModelType(static_cast<BSNConst::ModelTypes>(9), false);
    BSNComponent c(s, MCXML_850::MCVarList());
    EXPECT_FALSE(c.HasProcedure());
    std::vector<std::vector<double>> cols{{1}};
    MCCommon_850::ColumnRecordIter iter(cols);
    EXPECT_EQ(c.BuildModel(iter).GetCode(), 410001);
    EXPECT_FALSE(c.IsModelBuilt());
    EXPECT_EQ(c.GetOutputStats(), nullptr);
    EXPECT_TRUE(c.GetWarningMessages().IsEmpty());
    std::ostringstream os;
    c.Display(os);
    EXPECT_EQ(os.str(), "");
}

TEST(MessageTable, JoinedLiteralsAndGaps) {
    const std::string same = "unchanged";
    std::string t6;
    BSNComponentDisplay::ParseErrCodeToStr(410006, t6);
    const std::pair<int, std::string> cases[] = {
        {410005, same}, {410061, same}, {1, same},  // unassigned codes leave the text alone
        {410055, "Warning: Bayes factor cannot be estimated because at least one component for the prior is too small."},
        {410042, "Warning: The number of valid cases in Bayesian Independent  analysis is not above 5 for each group "
                 "for Diffuse prior distribution"},
        {410025, t6},
        {410001, "Internal error"},
        {410060, "Error: The number of shape parameters in Loglinear model is wrong."},
    };
    for (const auto& [code, expected] : cases) {
        std::string text = same;
        BSNComponentDisplay::ParseErrCodeToStr(code, text);
        EXPECT_EQ(text, expected) << code;
    }
}

TEST(Validation, BinomialAndPoissonPriorLists) {
    BSNSettings post = binomial(3, BSNConst::Posterior);
    EXPECT_TRUE(post.IsValidSettings().IsOK());
    EXPECT_EQ(post.GetNullPrior1s(), (std::vector<double>{2.0, 2.0, 2.0}));
    EXPECT_EQ(post.GetNullPrior2s(), (std::vector<double>{2.0, 2.0, 2.0}));
    BSNSettings noFactors, noCovariates;
    walk(noFactors, {{[](S& s) { s.SetTestDistType(BSNConst::Binomial); }, 410031}});
    walk(noCovariates, {{[](S& s) { s.SetTestDistType(BSNConst::Poisson); }, 410039}});

    // Three test variables 10, 11, 12 asking for a Bayes factor. A short
    // alternative list names the variable index of the first entry without
    // a prior; a bad value names its position. A (0, 0) pair is the
    // binomial's Haldane prior but not a gamma prior.
    struct Case {
        BSNConst::DistTypes dist;
        std::vector<double> alt1, alt2, null2;
        int code, datum;
    };
    const auto B = BSNConst::Binomial, P = BSNConst::Poisson;
    const Case cases[] = {
        {B, {1, 1}, {1, 1, 1}, {}, 410018, 12},      {P, {1}, {1, 1, 1}, {}, 410018, 11},
        {B, {1, 0, 1}, {1, 0, 1}, {}, 0, -1},        {P, {1, 0, 1}, {1, 0, 1}, {}, 410018, 1},
        {B, {1, 0, 1}, {1, 1, 1}, {}, 410018, 1},    {B, {1, 2, 1}, {1, 1, 0}, {}, 410018, 2},
        {B, {1, 1, 1}, {1, 1, 1}, {2, -1, 2}, 410019, 1}, {P, {1, 1, 1}, {1, 1, 1}, {2, 2, 0}, 410019, 2},
        {P, {1, 1, 1}, {1, 1, 1}, {}, 0, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.dist << " case " << (&c - cases));
        BSNSettings s = binomial(3, BSNConst::BayesFactor);
        if (c.dist == P) {
            s.SetTestDistType(P);
            s.SetCovariates(s.GetFactors());
            s.SetFactors({});
        }
        s.SetAlterPrior1s(c.alt1);
        s.SetAlterPrior2s(c.alt2);
        if (!c.null2.empty()) s.SetNullPrior2s(c.null2);
        expectError(s.IsValidSettings(), c.code, c.datum);
    }
}

TEST(Validation, NormalRelatedAndIndependent) {
    BSNSettings normal, related, ind;
    walk(normal, {{[](S&) {}, 410039}, {[](S& s) { s.SetCovariates({0}); }, 0}});
    related.SetModelType(BSNConst::Related, true);
    walk(related, {{[](S& s) { s.SetCovariates({0, 1}); }, 410039}, {[](S& s) { s.Set2ndRelatedList({2, 3}); }, 0}});
    ind.SetModelType(BSNConst::Independent, true);
    walk(ind, {
        {[](S& s) { s.SetCovariates({0}); }, 410040},
        {[](S& s) { s.SetMeanDistType(BSNConst::Normal); }, 410019},
        {[](S& s) { s.SetMeanDistParam1(1); s.SetMeanDistParam2(1); s.SetMeanDistParam3(1); s.SetMeanDistParam4(1); },
         410002},
        {[](S& s) { s.SetDataVarVals({1.0, 0.0}); }, 410002},
        {[](S& s) { s.SetDataVarVals({1.0, 2.0}); }, 410040},
        {[](S& s) { s.SetGroupVar(3); }, 0},
        // Only the Bayes factor: the mean-distribution parameters are not
        // needed, but with unknown variances the variance prior's are.
        {[](S& s) {
             s.SetAnalysType(BSNConst::BayesFactor);
             s.SetDataVarVals({});
             s.SetMeanDistParam1(MCMV::Missing());
         },
         0},
        {[](S& s) { s.SetPriorDistType(BSNConst::InverseChiSquare); }, 410019},
    });
}

TEST(Validation, CorrelationLimits) {
    BSNSettings s;
    s.SetModelType(BSNConst::Correlation, true);
    walk(s, {{[](S& s) { s.SetCovariates({0}); }, 410004},
             {[](S& s) { s.SetCovariates({0, 1}); s.SetMaxNPlots(51); }, 410019, 51},
             {[](S& s) { s.SetMaxNPlots(50); s.SetNullValue(1.0); }, 410019}});
    EXPECT_EQ(s.IsValidSettings().GetScaleDatum(0), 1.0);
    walk(s, {{[](S& s) { s.SetNullValue(-0.99); }, 0}});
}

TEST(Validation, RegressionAndAnova) {
    BSNSettings r;
    r.SetModelType(BSNConst::Regression, true);
    walk(r, {
        {[](S&) {}, 410034},
        {[](S& s) { s.SetDependVar(0); }, 410035},
        {[](S& s) {
             s.SetCovariates({1, 2}); s.SetFactors({3}); s.SetFactorNCategs({4}); s.SetAnalysType(BSNConst::Both);
             s.SetCompareType(BSNConst::CompareFull); s.SetFullModCovariates({1, 2, 5});
         },
         410015},
        // The reference prior needs no prior parameters.
        {[](S& s) { s.SetFullModFactors({3}); s.SetFullModFactorNCategs({4}); }, 0},
        {[](S& s) { s.SetPriorType(BSNConst::Conjugate); }, 410019},
        {[](S& s) { s.SetPriorShape(1); s.SetPriorScale(1); s.SetPriorMeans(std::vector<double>(6, 0.0)); }, 410020},
        // Intercept + 2 covariates + 4 categories.
        {[](S& s) { s.SetPriorMeans(std::vector<double>(7, 0.0)); }, 0},
        {[](S& s) { s.SetPlotFactors({9}); }, 410032},
        {[](S& s) { s.SetPlotFactors({3}); s.SetPlotCovars({3}); }, 410033},
        {[](S& s) { s.SetPlotCovars({2}); s.SetRegressors({1.0, 2.0}); }, 0},
    });
    EXPECT_TRUE(r.GetRegressors().empty());
    ASSERT_EQ(r.GetWarningMessages().Size(), 1u);
    EXPECT_EQ(r.GetWarningMessages().Get(0).GetCode(), 410022);
    EXPECT_TRUE(r.GetWarningMessages().Get(0).IsWarning());

    BSNSettings a;
    a.SetModelType(BSNConst::Anova, true);
    walk(a, {
        {[](S& s) { s.SetDependVar(0); }, 410035},
        {[](S& s) { s.SetFactors({1}); s.SetFactorNCategs({3}); }, 0},
        {[](S& s) { s.SetPlotFactorCats({0, 3}); }, 410032, 3},
        {[](S& s) {
             s.SetPlotFactorCats({2}); s.SetPriorType(BSNConst::Conjugate); s.SetPriorShape(2); s.SetPriorScale(2);
             s.SetPriorMeans({0, 0});
         },
         410020},
        {[](S& s) { s.SetPriorMeans({0, 0, 0}); }, 0},
    });
}

TEST(Validation, LogLinearAndUnknownTypes) {
    BSNSettings s, other;
    s.SetModelType(BSNConst::LogLinear, true);
    walk(s, {{[](S& s) { s.SetFactors({2, 2}); }, 410049, 2},
             {[](S& s) { s.SetFactors({2}); }, 410049, 1},
             {[](S& s) { s.SetFactors({2, 3}); }, 0}});
    other.SetModelType(static_cast<BSNConst::ModelTypes>(7), false);
    EXPECT_TRUE(other.IsValidSettings().IsOK());
}

// The adjust flag and the way back to one sample (the JSON reader's tests check the rest).
TEST(Settings, ModelTypeAdjustsDependentDefaults) {
    using namespace BSNConst;
    BSNSettings s;
    for (const auto& [type, adjust, scope, prior] :
         {std::tuple{Regression, false, MissingAnalysis, Conjugate}, std::tuple{Regression, true, MissingListwise, Reference},
          std::tuple{OneSample, true, MissingAnalysis, Conjugate}}) {
        s.SetModelType(type, adjust);
        EXPECT_EQ(std::tuple(s.GetModelType(), s.GetMissScope(), s.GetPriorType()), std::tuple(type, scope, prior)) << adjust;
    }
}

// Beyond the JSON reader's refusal test: setters refusing -1, and Rouder's default parameter.
TEST(Settings, SetterRulesRefuseBadValues) {
    BSNSettings s, rouder;
    EXPECT_FALSE(s.SetDependVar(-1));
    EXPECT_EQ(s.GetDependentVar(), -1);
    EXPECT_TRUE(s.SetDependVar(0));
    EXPECT_FALSE(s.SetFrequencyWeightVar(-2));
    EXPECT_FALSE(s.SetGroupVar(-1));
    EXPECT_FALSE(s.SetRegrWeightVar(-1));
    s.SetSecondGonenPar(-1.0);
    EXPECT_TRUE(MCMV::IsMissing(s.GetSecondGonenPar()));
    rouder.SetRegrCompType(BSNConst::Rouder);
    EXPECT_EQ(rouder.GetRegrComPar(), 1.0);
}
