#pragma once
// BSNPMMLExporter: writes a fitted regression or one-way ANOVA model as a
// PMML 4.4 document holding one GeneralRegressionModel (modelType
// generalLinear, functionName regression): header, data dictionary of the
// model's variables, mining schema, parameter, factor and covariate lists,
// PPMatrix, the optional PCovMatrix and the ParamMatrix of the coefficients
// (the posterior mean, or the least-squares estimates without a posterior),
// and a ModelExplanation naming the target and the number of records.
//
// Statuses: 102 (error) when a factor or covariate of the model is not in
// the variable list, or a factor that is not a coded variable is not a valid
// one (data slot 0 the variable, slot 1 0 for a factor, 1 for a covariate);
// 303 (error) for a covariance matrix of the wrong size (slot 0 the size
// expected, slot 1 the size given) or when a part of the document cannot be
// written. Nothing is written to the stream after an error.
#include <iosfwd>
#include <memory>
#include <string>

#include "bsn/frame/bsnsettings.h"
#include "platform/common/mcstatus.h"
#include "platform/matrix/mcsymmatrix.h"
#include "platform/pmml/mcpmmlexporter.h"
#include "platform/pmml/mcpmmlregrexporter.h"
#include "platform/pmml/mcregsettings.h"
#include "platform/variables/mcvarlist.h"

namespace MCBSN_850 {

class BSNPMMLExporter {
public:
    static constexpr int kMissingVariable = 102;
    static constexpr int kExportFailed = 303;

    // Keeps references to the three arguments, which must outlive the
    // exporter.
    BSNPMMLExporter(const BSNSettings& settings, const MCMath_850::MCRegSettings& regSettings,
                    const MCXML_850::MCVarList& varList);
    ~BSNPMMLExporter();
    BSNPMMLExporter(const BSNPMMLExporter&) = delete;
    BSNPMMLExporter& operator=(const BSNPMMLExporter&) = delete;

    // The number of cases written as numOfRecords.
    void SetTotalWeight(double totalWeight) { m_totalWeight = totalWeight; }
    // The Application element of the header (default "bsn", no version).
    void SetApplication(std::string name, std::string version);

    MCCommon_850::MCStatus CheckConsistency();
    // Writes the document; covariance (may be null) becomes the PCovMatrix.
    MCCommon_850::MCStatus ExportPMML(std::ostream& os, const MCMath_850::MCSymMatrix* covariance);
    // The GeneralRegressionModel, appended to the document's root (after
    // ExportPMML has started the document); false when a part fails.
    bool AddModel(const MCMath_850::MCSymMatrix* covariance);
    // Puts the ModelExplanation in its place in the model (after the
    // mining schema).
    bool AddModelExplanation(MCXML_850::XMLElement* model);

    const MCCommon_850::MCStatus& GetStatus() const { return m_status; }
    const MCMath_850::MCPMMLRegrExporter& GetPMMLRegrExporter() const { return *m_regrExporter; }

    void Display(std::ostream& os) const;

private:
    MCCommon_850::MCStatus fail(int code, int datum0, int datum1);

    const BSNSettings& m_settings;
    const MCMath_850::MCRegSettings& m_regSettings;
    const MCXML_850::MCVarList& m_varList;
    std::unique_ptr<MCMath_850::MCPMMLRegrExporter> m_regrExporter;
    MCCommon_850::MCStatus m_status;
    bool m_checked = false;
    double m_totalWeight;
    std::string m_application = "bsn";
    std::string m_applicationVersion;
    // The document being written (during ExportPMML only).
    std::unique_ptr<MCXML_850::XMLDocument> m_doc;
    MCXML_850::XMLElement* m_root = nullptr;
};

} // namespace MCBSN_850
