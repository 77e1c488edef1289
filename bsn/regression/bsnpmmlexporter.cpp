#include "bsn/regression/bsnpmmlexporter.h"

#include <ostream>
#include <vector>

#include "platform/common/mcmv.h"
#include "platform/display/mcdisplay.h"

namespace MCBSN_850 {

using MCCommon_850::MCMV;
using MCCommon_850::MCPMMLExporter;
using MCCommon_850::MCStatus;
using MCXML_850::XMLElement;

namespace {

// The extender attribute of the Extension elements this library writes.
constexpr const char* kExtender = "bsn";

} // namespace

BSNPMMLExporter::BSNPMMLExporter(const BSNSettings& settings, const MCMath_850::MCRegSettings& regSettings,
                                 const MCXML_850::MCVarList& varList)
    : m_settings(settings), m_regSettings(regSettings), m_varList(varList),
      m_regrExporter(std::make_unique<MCMath_850::MCPMMLRegrExporter>(regSettings)),
      m_totalWeight(MCMV::Missing()) {}

BSNPMMLExporter::~BSNPMMLExporter() = default;

void BSNPMMLExporter::SetApplication(std::string name, std::string version) {
    m_application = std::move(name);
    m_applicationVersion = std::move(version);
}

MCStatus BSNPMMLExporter::fail(int code, int datum0, int datum1) {
    MCStatus s(code, false);
    s.SetDiscreteDatum(0, datum0);
    s.SetDiscreteDatum(1, datum1);
    m_status = s;
    return s;
}

MCStatus BSNPMMLExporter::CheckConsistency() {
    m_checked = true;
    for (int v : m_regrExporter->GetActiveFactors()) {
        if (!m_varList.IsValidIndex(v)) return fail(kMissingVariable, v, 0);
        // A coded variable is usable whatever its range; any other factor
        // (numeric codes used as categories) must pass its own check.
        const MCXML_850::MCContVar& var = m_varList.Get(v);
        if (var.GetKind() != MCXML_850::MCVarKind::Nominal && !var.IsValid()) return fail(kMissingVariable, v, 0);
    }
    for (int v : m_regrExporter->GetActiveCovariates())
        if (!m_varList.IsValidIndex(v)) return fail(kMissingVariable, v, 1);
    m_status = MCStatus();
    return m_status;
}

MCStatus BSNPMMLExporter::ExportPMML(std::ostream& os, const MCMath_850::MCSymMatrix* covariance) {
    const int expected = m_regrExporter->GetCovarianceSize();
    if (covariance != nullptr && covariance->Size() != expected)
        return fail(kExportFailed, expected, covariance->Size());
    if (!m_checked) {
        if (const MCStatus s = CheckConsistency(); s.IsError()) return s;
    } else if (m_status.IsError() && m_status.GetCode() == kMissingVariable) {
        return m_status;
    }

    m_doc = std::make_unique<MCXML_850::XMLDocument>();
    const MCPMMLExporter exporter(m_application, m_applicationVersion, kExtender);
    const bool anova = m_settings.GetModelType() == BSNConst::Anova;
    m_root = exporter.ExportHeader(*m_doc, anova ? "Bayesian one-way ANOVA" : "Bayesian linear regression");

    std::vector<MCPMMLExporter::Field> fields{{m_regSettings.GetDependentVar(), 0}};
    const std::vector<int> factors = m_regSettings.GetFactors(), sizes = m_regSettings.GetFactorSizes();
    for (std::size_t i = 0; i < factors.size(); ++i) fields.push_back({factors[i], sizes[i]});
    for (int v : m_regSettings.GetCovariates()) fields.push_back({v, 0});
    for (int v : {m_regSettings.GetFrequencyWeightVar(), m_regSettings.GetRegrWeightVar()})
        if (v >= 0) fields.push_back({v, 0});

    bool ok = exporter.ExportDataDictionary(m_root, m_varList, fields) && AddModel(covariance);
    ok = ok && MCXML_850::WriteTree(*m_doc, os);
    m_root = nullptr;
    m_doc.reset();
    if (!ok) return fail(kExportFailed, -1, -1);
    m_status = MCStatus();
    return m_status;
}

bool BSNPMMLExporter::AddModel(const MCMath_850::MCSymMatrix* covariance) {
    if (m_root == nullptr) return false;
    const MCPMMLExporter exporter(m_application, m_applicationVersion, kExtender);
    XMLElement* model = m_root->InsertNewChildElement("GeneralRegressionModel");
    model->SetAttribute("modelType", "generalLinear");
    model->SetAttribute("algorithmName", m_settings.GetModelType() == BSNConst::Anova ? "BayesianAnova"
                                                                                      : "BayesianMultipleRegression");
    model->SetAttribute("functionName", "regression");
    if (exporter.ExportExtension(model, "modelID", "0") == nullptr) return false;

    const MCMath_850::MCPMMLRegrExporter& r = *m_regrExporter;
    return r.ExportMiningSchema(model, m_varList) && r.ExportParameterList(model) &&
           r.ExportFactorList(model, m_varList) && r.ExportCovariateList(model, m_varList) &&
           r.ExportPPMatrix(model, m_varList) && (covariance == nullptr || r.ExportPCovMatrix(model, covariance)) &&
           r.ExportParamMatrix(model) && AddModelExplanation(model);
}

bool BSNPMMLExporter::AddModelExplanation(XMLElement* model) {
    const int dependent = m_regSettings.GetDependentVar();
    if (model == nullptr || !m_varList.IsValidIndex(dependent)) return false;
    XMLElement* explanation = model->GetDocument()->NewElement("ModelExplanation");
    XMLElement* quality = explanation->InsertNewChildElement("PredictiveModelQuality");
    quality->SetAttribute("targetField", m_varList.Get(dependent).GetName().c_str());
    if (!MCMV::IsMissing(m_totalWeight))
        quality->SetAttribute("numOfRecords", MCPMMLExporter::FormatReal(m_totalWeight).c_str());
    // The schema puts the explanation right after the mining schema (the
    // model has no Output or ModelStats).
    if (XMLElement* schema = model->FirstChildElement("MiningSchema"); schema != nullptr)
        return model->InsertAfterChild(schema, explanation) != nullptr;
    model->GetDocument()->DeleteNode(explanation);
    return false;
}

void BSNPMMLExporter::Display(std::ostream& os) const {
    using namespace MCDisplay_850;
    StreamGuard guard(os);
    DisplayText(0, "BSNPMMLExporter display start");
    DisplayI("Status", m_status.GetCode());
    DisplayB("Consistency checked", m_checked);
    DisplayD("Total weight", m_totalWeight);
    DisplayS("Application", m_application);
    m_regrExporter->Display(os);
    DisplayText(0, "End of display BSNPMMLExporter object");
}

} // namespace MCBSN_850
