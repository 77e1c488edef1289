#pragma once
// SVG pictures of one plotted quantity (a test variable, a pair, a
// coefficient, a cell...): a main panel that overlays the prior, the
// posterior and the likelihood on one x axis spanning all three, and, when
// the posterior is much narrower than that axis, a close-up of the
// posterior below it.
//
// Heights: the y axis is the posterior's density. The likelihood, known
// only up to a constant, is scaled so that its peak matches the posterior's.
// A prior whose peak is within a factor of five of the posterior's is drawn
// on the same density scale; otherwise it is multiplied by a round factor
// (1, 2 or 5 times a power of ten) that brings it to a visible height, and
// the legend names that factor ("prior ×50"). A flat prior (stored as
// exactly the two values 1.0) has no height of its own: it is a horizontal
// line at half the posterior's peak, and the legend says so.
//
// The title names the quantity, the subtitle states the Bayes factor in
// words, the credible interval is shaded under the posterior with its
// limits written beside it, and the null value is a dashed vertical line.
// Missing points break a curve into separate pieces. Names too long for the
// picture are shortened with an ellipsis in the middle; the legend is
// placed inside the panel, in the upper corner the curves leave freer.
#include <string>
#include <utility>
#include <vector>

#include "cli/resultview.h"

namespace bsncli {

using Segment = std::vector<std::pair<double, double>>;

// Text for XML content and attribute values: the markup characters as
// entities, control characters (which XML cannot hold) dropped.
std::string XmlEscape(const std::string& text);

// exp(ll - max ll) at every point; missing where ll is missing.
std::vector<double> ScaleLogLikelihood(const std::vector<double>& logLikelihood);

// True for the stored form of a flat prior: exactly two values, both 1.0.
bool IsFlatPrior(const Curve& prior);

// The drawable pieces of a curve: runs of points where both x and y are
// present, split wherever either is missing.
std::vector<Segment> CurveSegments(const Curve& curve);

// The Bayes factor of a plot in words, e.g. "BF01 = 3.69: the data are 3.7
// times more likely under the null"; "" when the plot has no factor.
std::string FactorInWords(const PlotSet& plot);

// The width a text takes at a font size (pixels), estimated generously
// from its characters, and the text shortened with "…" in the middle so
// that it fits a width.
double TextWidth(const std::string& text, double fontSize);
std::string Ellipsize(const std::string& text, double fontSize, double width);

// The whole SVG document for one plotted quantity.
std::string RenderPlotSvg(const PlotSet& plot);

// A file name stem made of letters, digits, '.', '-' and '_' only.
std::string PlotFileStem(const std::string& name);

// Writes DIR/<name>.svg for every plot and then every figure (creating DIR;
// a stem used twice gets a suffix _2, _3, ...). Each file is written whole
// or not at all. Returns the paths written; throws InputError when the
// directory or a file cannot be written.
std::vector<std::string> WritePlots(const std::vector<PlotSet>& plots, const std::string& dir,
                                    const std::vector<SvgFigure>& figures = {});

} // namespace bsncli
