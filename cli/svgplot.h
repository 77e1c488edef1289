#pragma once
// SVG pictures of the curves of one test variable: three stacked panels,
// each with its own axes and grid, for the likelihood, the prior and the
// posterior.
//
// The likelihood arrives as a log-likelihood up to an additive constant, so
// it is drawn as exp(ll - max ll): 1 at its peak, on the same relative scale
// whatever the constant. A flat prior (stored as exactly the two values 1.0)
// is a horizontal line at 1 across its domain. Missing points break a curve
// into separate pieces instead of being drawn.
#include <string>
#include <utility>
#include <vector>

#include "cli/resultview.h"

namespace bsncli {

using Segment = std::vector<std::pair<double, double>>;

// exp(ll - max ll) at every point; missing where ll is missing.
std::vector<double> ScaleLogLikelihood(const std::vector<double>& logLikelihood);

// True for the stored form of a flat prior: exactly two values, both 1.0.
bool IsFlatPrior(const Curve& prior);

// The drawable pieces of a curve: runs of points where both x and y are
// present, split wherever either is missing.
std::vector<Segment> CurveSegments(const Curve& curve);

// The whole SVG document for one variable.
std::string RenderPlotSvg(const PlotSet& plot);

// A file name stem made of letters, digits, '.', '-' and '_' only.
std::string PlotFileStem(const std::string& variable);

// Writes DIR/<variable>.svg for every plot (creating DIR; a stem used twice
// gets a suffix _2, _3, ...). Returns the paths written; throws InputError
// when the directory or a file cannot be written.
std::vector<std::string> WritePlots(const std::vector<PlotSet>& plots, const std::string& dir);

} // namespace bsncli
