#pragma once
// An independent reader of a PMML GeneralRegressionModel (generalLinear, regression) that predicts
// by the PMML rules: for each parameter the product of its PPCells' contributions (a factor cell 1
// when the record's value equals the cell's value, compared as numbers when the field's dataType is
// numeric, else 0; a covariate cell the value to the cell's power; no cell 1), times the
// parameter's beta from the ParamMatrix, summed over the parameters.
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <tinyxml2.h>

namespace pmmltest {

class GeneralRegressionEvaluator {
public:
    explicit GeneralRegressionEvaluator(const std::string& xml) {
        if (m_doc.Parse(xml.c_str(), xml.size()) != tinyxml2::XML_SUCCESS) throw std::runtime_error("not XML");
        const auto* pmml = m_doc.RootElement();
        for (const auto* f = need(need(pmml, "DataDictionary"), "DataField"); f != nullptr;
             f = f->NextSiblingElement("DataField")) {
            const std::string type = f->Attribute("dataType");
            m_numeric[f->Attribute("name")] = type == "double" || type == "integer" || type == "float";
        }
        model = need(pmml, "GeneralRegressionModel");
        for (const auto* p = need(need(model, "ParameterList"), "Parameter"); p != nullptr;
             p = p->NextSiblingElement("Parameter"))
            parameters.push_back(p->Attribute("name"));
        if (const auto* list = model->FirstChildElement("FactorList"))
            for (const auto* p = list->FirstChildElement("Predictor"); p; p = p->NextSiblingElement("Predictor"))
                factors.insert(p->Attribute("name"));
        for (const auto* c = need(model, "PPMatrix")->FirstChildElement("PPCell"); c;
             c = c->NextSiblingElement("PPCell"))
            cells.push_back({c->Attribute("predictorName"), c->Attribute("value"), c->Attribute("parameterName")});
        for (const auto* c = need(model, "ParamMatrix")->FirstChildElement("PCell"); c;
             c = c->NextSiblingElement("PCell")) {
            beta[c->Attribute("parameterName")] = c->DoubleAttribute("beta");
            df[c->Attribute("parameterName")] = c->IntAttribute("df", -1);
        }
        if (const auto* cov = model->FirstChildElement("PCovMatrix"))
            for (const auto* c = cov->FirstChildElement("PCovCell"); c; c = c->NextSiblingElement("PCovCell"))
                covariance[{c->Attribute("pRow"), c->Attribute("pCol")}] = c->DoubleAttribute("value");
    }

    // The prediction for a record given as field name -> text; nothing when
    // a predictor has no value.
    std::optional<double> Predict(const std::map<std::string, std::string>& record) const {
        std::map<std::string, double> x;
        for (const auto& p : parameters) x[p] = 1.0;
        for (const auto& c : cells) {
            const auto it = record.find(c.predictor);
            if (it == record.end() || it->second.empty()) return std::nullopt;
            if (factors.count(c.predictor) != 0) {
                const bool numeric = m_numeric.at(c.predictor);
                const bool equal = numeric ? std::stod(it->second) == std::stod(c.value) : it->second == c.value;
                x[c.parameter] *= equal ? 1.0 : 0.0;
            } else {
                x[c.parameter] *= std::pow(std::stod(it->second), std::stod(c.value));
            }
        }
        double y = 0.0;
        for (const auto& p : parameters) y += x[p] * beta.at(p);
        return y;
    }

    struct Cell { std::string predictor, value, parameter; };
    const tinyxml2::XMLElement* model = nullptr;
    std::vector<std::string> parameters;
    std::set<std::string> factors;
    std::vector<Cell> cells;
    std::map<std::string, double> beta;
    std::map<std::string, int> df;
    std::map<std::pair<std::string, std::string>, double> covariance;

private:
    static const tinyxml2::XMLElement* need(const tinyxml2::XMLElement* e, const char* child) {
        const auto* c = e == nullptr ? nullptr : e->FirstChildElement(child);
        if (c == nullptr) throw std::runtime_error(std::string("no ") + child);
        return c;
    }

    tinyxml2::XMLDocument m_doc;
    std::map<std::string, bool> m_numeric;
};

} // namespace pmmltest
