#pragma once
// MCPMMLRegrExporter: the body of a PMML GeneralRegressionModel for a
// linear model described by an MCRegSettings: the mining schema, the
// parameter, factor and covariate lists, the PPMatrix linking predictors to
// parameters, the optional PCovMatrix of the parameter estimates and the
// ParamMatrix of the coefficients. Each Export call appends its element to
// the model element, so calling them in the schema's order (as listed here)
// gives a valid model.
//
// Parameters are named p0, p1, ... in design order (the intercept first,
// then every category of every factor, then the covariates); a redundant
// parameter is listed too, with coefficient 0, so that the parameter list
// matches the design. A consumer computes, for each parameter, the product
// of its PPCells' contributions (a factor cell: 1 when the record's value is
// the cell's value, else 0; a covariate cell: the value to the cell's
// power; no cell: 1) and predicts the sum of these times the coefficients.
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/matrix/mcsymmatrix.h"
#include "platform/pmml/mcregsettings.h"
#include "platform/pmml/writetree.h"
#include "platform/variables/mcvarlist.h"

namespace MCMath_850 {

class MCPMMLRegrExporter {
public:
    // Keeps a reference to the settings, which must outlive the exporter.
    explicit MCPMMLRegrExporter(const MCRegSettings& settings);

    // The predictors a consumer must supply.
    std::vector<int> GetActiveFactors() const;
    std::vector<int> GetActiveCovariates() const;
    // The size a covariance matrix of the parameters must have.
    int GetCovarianceSize() const { return m_settings.GetNParameters(); }

    static std::string ParameterName(int parameter) { return "p" + std::to_string(parameter); }

    // Each returns false, having appended nothing, when the model element is
    // null or a variable of the model is not in the list; the covariance
    // matrix must have GetCovarianceSize() rows, and every coefficient must
    // be a number.
    bool ExportMiningSchema(MCXML_850::XMLElement* model, const MCXML_850::MCVarList& vars) const;
    bool ExportParameterList(MCXML_850::XMLElement* model) const;
    bool ExportFactorList(MCXML_850::XMLElement* model, const MCXML_850::MCVarList& vars) const;
    bool ExportCovariateList(MCXML_850::XMLElement* model, const MCXML_850::MCVarList& vars) const;
    bool ExportPPMatrix(MCXML_850::XMLElement* model, const MCXML_850::MCVarList& vars) const;
    // The lower triangle (diagonal included) of the covariance among the
    // parameters that are not redundant (a redundant one has no variance).
    bool ExportPCovMatrix(MCXML_850::XMLElement* model, const MCSymMatrix* covariance) const;
    // One PCell per parameter: beta the coefficient, df 1 (0 for a redundant
    // parameter, which is not estimated).
    bool ExportParamMatrix(MCXML_850::XMLElement* model) const;

    void Display(std::ostream& os) const;

private:
    bool hasVariables(const MCXML_850::MCVarList& vars, const std::vector<int>& variables) const;

    const MCRegSettings& m_settings;
};

} // namespace MCMath_850
