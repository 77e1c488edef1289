// PMML export of regression and ANOVA models: every document checked against the schema's
// structure, read back and evaluated by the PMML rules (it must predict what Score predicts), its
// content against R, and the exporter's statuses.
#include <fmt/format.h>

#include <sstream>

#include "bsn/regression/bsnpmmlexporter.h"
#include "platform/pmml/mcpmmlexporter.h"
#include "tests/pmml/pmmlevaluator.h"
#include "tests/pmml/pmmlschemacheck.h"
#include "tests/regression/scoringtestsupport.h"

using namespace scoringtest;
using MCBSN_850::BSNPMMLExporter;
using MCCommon_850::MCStatus;

namespace {

const std::vector<std::string> kGLabels = {"low", "mid", "high"};
const std::vector<std::string> kHLabels = {"10", "20", "30", "40"};

// The variables of regr_small.csv by name, the factors coded with labels
// (the data values the codes stand for).
MCXML_850::MCVarList namedVars() {
    MCXML_850::MCVarList vars;
    for (const char* name : {"y", "x1", "x2", "g", "h", "freq", "rw"}) {
        const bool factor = std::string(name) == "g" || std::string(name) == "h";
        vars.Add(MCXML_850::MCContVar(name, factor ? MCXML_850::MCVarKind::Nominal : MCXML_850::MCVarKind::Scale));
    }
    vars.Get(kG).SetValueLabels(kGLabels);
    vars.Get(kH).SetValueLabels(kHLabels);
    return vars;
}

std::string text(double v) { return MCMV::IsMissing(v) ? std::string() : fmt::format("{:.17g}", v); }

// A record of regr_small.csv's layout as the PMML consumer sees it.
std::map<std::string, std::string> fields(const std::vector<double>& v) {
    const auto label = [&](int column, const std::vector<std::string>& labels) {
        const double code = v[static_cast<std::size_t>(column)];
        return MCMV::IsMissing(code) ? std::string() : labels.at(static_cast<std::size_t>(code));
    };
    return {{"x1", text(v[kX1])}, {"x2", text(v[kX2])}, {"g", label(kG, kGLabels)}, {"h", label(kH, kHLabels)}};
}

} // namespace

TEST(PmmlExport, DocumentsReadBackPredictWhatScorePredicts) {
    BSNSettings bfOnly = modelSettings('A'), conjugate = modelSettings('A');
    bfOnly.SetAnalysType(BC::BayesFactor);
    setConjugatePrior(conjugate, false);
    // `reference`: the model whose description and covariance are also checked against R.
    const struct { const char* name; BSNSettings settings; bool covariance; char reference; } cases[] = {
        {"A reference (dense rows)", modelSettings('A'), true, 'A'}, {"B reference (sparse rows)", modelSettings('B'), true, 0},
        {"C ANOVA", modelSettings('C'), true, 'C'}, {"A conjugate", conjugate, true, 0},
        {"A without posterior", bfOnly, false, 0}};
    const auto training = readColumns("regr_small.csv");
    const auto fresh = readColumns("scoring_new.csv");
    const auto vars = namedVars();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RegrRun run(c.settings, training, vars);
        ASSERT_TRUE(run.status.IsOK()) << c.name;
        const auto& r = run.result();
        MCMath_850::MCRegSettings regSettings;
        r.FillRegSettings(regSettings);
        MCMath_850::MCSymMatrix cov;
        ASSERT_EQ(c.covariance && r.GetPosteriorCovariance(cov), c.covariance) << c.name;
        BSNPMMLExporter exporter(r.GetSettings(), regSettings, vars);
        exporter.SetTotalWeight(r.GetNCases());
        std::ostringstream os;
        const MCStatus status = exporter.ExportPMML(os, c.covariance ? &cov : nullptr);
        ASSERT_TRUE(status.IsOK()) << c.name << " " << status.GetCode();
        EXPECT_EQ(pmmltest::SchemaProblems(os.str()), "") << c.name;
        const pmmltest::GeneralRegressionEvaluator pmml(os.str());

        // One parameter per design parameter, a redundant one with df 0 (its
        // beta 0 shows in the predictions of its category's records).
        const auto& redundant = r.GetRedundancy();
        ASSERT_EQ(pmml.parameters.size(), redundant.size()) << c.name;
        for (std::size_t i = 0; i < redundant.size(); ++i)
            EXPECT_EQ(pmml.df.at("p" + std::to_string(i)), redundant[i] ? 0 : 1) << c.name << " " << i;
        EXPECT_EQ(pmml.covariance.empty(), !c.covariance) << c.name;

        for (const auto* table : {&training, &fresh})
            for (std::size_t i = 0; i < (*table)[0].size(); ++i) {
                const auto values = row(*table, i);
                const auto predicted = pmml.Predict(fields(values));
                ASSERT_TRUE(predicted.has_value());
                const double expected = score(r, values).GetMean();
                EXPECT_NEAR(*predicted, expected, 1e-12 * std::max(1.0, std::fabs(expected)))
                    << c.name << " record " << i;
            }
        if (c.reference == 0) continue;

        // Data dictionary: the dependent, covariates and weights continuous, the factor categorical
        // with its data values in code order; the mining schema's usage of each field.
        const char model = c.reference;
        const auto* root = pmml.model->Parent()->ToElement();
        EXPECT_STREQ(root->Attribute("version"), "4.4");
        std::string dict, usage;
        for (const auto* f = root->FirstChildElement("DataDictionary")->FirstChildElement("DataField"); f;
             f = f->NextSiblingElement("DataField")) {
            dict += fmt::format("{}:{}/{}", f->Attribute("name"), f->Attribute("optype"), f->Attribute("dataType"));
            for (const auto* v = f->FirstChildElement("Value"); v; v = v->NextSiblingElement("Value"))
                dict += std::string(",") + v->Attribute("value");
            dict += " ";
        }
        const auto* grm = pmml.model;
        for (const auto* f = grm->FirstChildElement("MiningSchema")->FirstChildElement("MiningField"); f;
             f = f->NextSiblingElement("MiningField"))
            usage += fmt::format("{}:{} ", f->Attribute("name"), f->Attribute("usageType"));
        const std::string covariates = model == 'A' ? "x1:continuous/double x2:continuous/double " : "";
        EXPECT_EQ(dict, "y:continuous/double g:categorical/string,low,mid,high " + covariates +
                            "freq:continuous/double rw:continuous/double ");
        EXPECT_EQ(usage, std::string("y:target g:active ") + (model == 'A' ? "x1:active x2:active " : "") +
                             "freq:frequencyWeight rw:analysisWeight ");
        EXPECT_EQ(root->FirstChildElement("DataDictionary")->IntAttribute("numberOfFields"), model == 'A' ? 6 : 4);

        EXPECT_EQ(fmt::format("{} {} {}", grm->Attribute("modelType"), grm->Attribute("functionName"),
                              grm->Attribute("algorithmName")),
                  model == 'C' ? "generalLinear regression BayesianAnova"
                               : "generalLinear regression BayesianMultipleRegression");
        const auto* ext = grm->FirstChildElement("Extension");
        EXPECT_EQ(fmt::format("{}={}", ext->Attribute("name"), ext->Attribute("value")), "modelID=0");
        const auto* quality = grm->FirstChildElement("ModelExplanation")->FirstChildElement("PredictiveModelQuality");
        EXPECT_STREQ(quality->Attribute("targetField"), "y");
        EXPECT_EQ(quality->DoubleAttribute("numOfRecords"), readReference("regr_reference.csv").at("N")[0]);

        // The posterior covariance is lm's vcov x nu / (nu - 2), its lower
        // triangle over the parameters that are not redundant.
        const std::vector<int> keep = model == 'A' ? std::vector<int>{0, 1, 2, 4, 5} : std::vector<int>{0, 1, 2};
        const auto& lm = scoringReference().at(std::string(1, model) + "_cov");
        std::size_t at = 0;
        for (std::size_t i = 0; i < keep.size(); ++i)
            for (std::size_t j = 0; j <= i; ++j, ++at) {
                const auto key = std::make_pair("p" + std::to_string(keep[i]), "p" + std::to_string(keep[j]));
                ASSERT_EQ(pmml.covariance.count(key), 1u) << key.first << "," << key.second;
                EXPECT_NEAR(pmml.covariance.at(key), lm[at], 1e-9 * std::max(1e-3, std::fabs(lm[at])))
                    << model << " " << key.first << "," << key.second;
            }
        EXPECT_EQ(pmml.covariance.size(), at) << "cells of a redundant parameter were written";
    }
}

TEST(PmmlExport, StatusesForMissingVariablesAndBadInputs) {
    // A model described directly: y ~ g + x1 + x2 over the named variables.
    const auto design = [](int factor, int covariate, int dependent) {
        MCMath_850::MCFastDesignMatrix d({factor}, {3}, {kX1, covariate}, true);
        d.SetDepVar(dependent);
        return d;
    };
    const std::vector<double> b = {1.0, 0.5, -0.5, 0.0, 2.0, -1.0};
    const auto vars = namedVars();
    auto reversed = vars;  // numeric codes as categories, an invalid range
    reversed.Get(kG) = MCXML_850::MCContVar("g", MCXML_850::MCVarKind::Scale, 2.0, 0.0);
    auto unnamedNominal = vars;  // a coded factor needs no check of its own
    unnamedNominal.Get(kG) = MCXML_850::MCContVar("", MCXML_850::MCVarKind::Nominal);
    MCMath_850::MCSymMatrix size5(5), size6(6);
    for (int i = 0; i < 6; ++i) size6.Set(i, i, 1.0);
    std::vector<double> missingBeta = b;
    missingBeta[4] = kMiss;

    const struct { const char* name; MCMath_850::MCFastDesignMatrix design; const MCXML_850::MCVarList* vars;
                   const MCMath_850::MCSymMatrix* covariance; std::vector<double> coefficients; int code, d0, d1;
    } cases[] = {
        {"complete", design(kG, kX2, kY), &vars, &size6, b, 0, -1, -1},
        {"coded factor without a name", design(kG, kX2, kY), &unnamedNominal, nullptr, b, 0, -1, -1},
        {"factor not in the list", design(9, kX2, kY), &vars, nullptr, b, 102, 9, 0},
        {"covariate not in the list", design(kG, 8, kY), &vars, nullptr, b, 102, 8, 1},
        {"numeric factor with a reversed range", design(kG, kX2, kY), &reversed, nullptr, b, 102, kG, 0},
        {"covariance of the wrong size", design(kG, kX2, kY), &vars, &size5, b, 303, 6, 5},
        {"a coefficient missing", design(kG, kX2, kY), &vars, nullptr, missingBeta, 303, -1, -1},
        {"dependent not in the list", design(kG, kX2, 12), &vars, nullptr, b, 303, -1, -1},
    };
    for (const auto& c : cases) {
        MCMath_850::MCRegSettings rs;
        rs.SetDesign(c.design);
        rs.SetCoefficients(c.coefficients);
        rs.SetRedundancy({false, false, false, true, false, false});
        BSNSettings settings = modelSettings('A');
        BSNPMMLExporter exporter(settings, rs, *c.vars);
        std::ostringstream os;
        const MCStatus s = exporter.ExportPMML(os, c.covariance);
        EXPECT_EQ(s.GetCode(), c.code) << c.name;
        EXPECT_EQ(exporter.GetStatus(), s) << c.name;
        if (c.code == 0) {
            EXPECT_EQ(pmmltest::SchemaProblems(os.str()), "") << c.name;
            // The validator is live: the ParamMatrix before the PPMatrix breaks the schema's element order.
            std::string moved = os.str();
            const auto a = moved.find("<ParamMatrix"), z = moved.find("</ParamMatrix>") + 14;
            const std::string block = moved.substr(a, z - a);
            moved.insert(moved.erase(a, z - a).find("<PPMatrix"), block);
            EXPECT_NE(pmmltest::SchemaProblems(moved), "") << c.name;
            continue;
        }
        EXPECT_TRUE(s.IsError()) << c.name;
        EXPECT_EQ(os.str(), "") << c.name << ": a failed export wrote something";
        EXPECT_EQ(s.GetDiscreteDatum(0), c.d0) << c.name;
        EXPECT_EQ(s.GetDiscreteDatum(1), c.d1) << c.name;
    }
}

TEST(PmmlExport, CategoryValueTypesAndNumberTexts) {
    using MCCommon_850::MCPMMLExporter;
    const struct { std::vector<std::string> labels; int n; const char* type; } cases[] = {
        {{"1", "2", "-10"}, 3, "integer"}, {{"1", "2.5"}, 2, "double"}, {{"1", "1e3"}, 2, "double"},
        {{"1", "a"}, 2, "string"}, {{"1", " 2"}, 2, "string"}, {{}, 3, "integer"}, {{"a"}, 2, "string"}};
    for (const auto& c : cases) {
        MCXML_850::MCContVar v("f", MCXML_850::MCVarKind::Nominal);
        v.SetValueLabels(c.labels);
        EXPECT_STREQ(MCPMMLExporter::CategoryDataType(v, c.n), c.type) << c.labels.size();
    }
    // A code past the labels stands for itself.
    MCXML_850::MCContVar partial("f", MCXML_850::MCVarKind::Nominal);
    partial.SetValueLabels({"x"});
    EXPECT_EQ(MCPMMLExporter::CategoryValue(partial, 0), "x");
    EXPECT_EQ(MCPMMLExporter::CategoryValue(partial, 1), "1");
    for (const double v : {0.1, -2.5e-300, 1.0 / 3.0, 123456789012345678.0, 0.0, 5.0})
        EXPECT_EQ(std::stod(MCPMMLExporter::FormatReal(v)), v);
    EXPECT_EQ(MCPMMLExporter::FormatReal(0.1), "0.1");
}
