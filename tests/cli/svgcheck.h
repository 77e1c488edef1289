#pragma once
// Reading the host's SVG and HTML back for tests: parse as XML, find
// elements by class, and estimate where each text lands on the page.
#include <tinyxml2.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace bsntest {

// Every element below `root` (itself included) for which `keep` holds, in
// document order.
inline std::vector<const tinyxml2::XMLElement*> Elements(
    const tinyxml2::XMLElement* root, const std::function<bool(const tinyxml2::XMLElement&)>& keep) {
    std::vector<const tinyxml2::XMLElement*> out;
    if (root == nullptr) return out;
    if (keep(*root)) out.push_back(root);
    for (const auto* c = root->FirstChildElement(); c != nullptr; c = c->NextSiblingElement()) {
        auto below = Elements(c, keep);
        out.insert(out.end(), below.begin(), below.end());
    }
    return out;
}

inline std::string Attr(const tinyxml2::XMLElement& e, const char* name) {
    const char* v = e.Attribute(name);
    return v ? v : "";
}

// Elements whose class list holds `cls` ("panel main" holds "panel" and "main").
inline std::vector<const tinyxml2::XMLElement*> ByClass(const tinyxml2::XMLElement* root, const std::string& cls) {
    return Elements(root, [&](const tinyxml2::XMLElement& e) {
        const std::string list = " " + Attr(e, "class") + " ";
        return list.find(" " + cls + " ") != std::string::npos;
    });
}

inline std::vector<const tinyxml2::XMLElement*> ByName(const tinyxml2::XMLElement* root, const char* name) {
    return Elements(root, [&](const tinyxml2::XMLElement& e) { return std::strcmp(e.Name(), name) == 0; });
}

inline std::string Text(const tinyxml2::XMLElement* e) { return e && e->GetText() ? e->GetText() : ""; }

struct TextBox {
    std::string text;
    double left, top, right, bottom;
};

// Where a <text> lands, estimated independently of the renderer: 0.6 em per
// character (counting UTF-8 code points), 0.8 em above the baseline and
// 0.25 em below, shifted by its anchor; "rotate(-90 x y)" about its own
// anchor turns the box upright.
inline TextBox BoxOf(const tinyxml2::XMLElement& e) {
    const std::string text = Text(&e);
    std::size_t chars = 0;
    for (unsigned char c : text) chars += (c & 0xC0) != 0x80;
    const double size = e.DoubleAttribute("font-size", 16), x = e.DoubleAttribute("x"), y = e.DoubleAttribute("y");
    const double width = 0.6 * size * static_cast<double>(chars);
    const std::string anchor = Attr(e, "text-anchor");
    const double start = anchor == "middle" ? -width / 2 : anchor == "end" ? -width : 0;
    if (Attr(e, "transform").find("rotate(-90") != std::string::npos)
        return {text, x - 0.8 * size, y - start - width, x + 0.25 * size, y - start};
    return {text, x + start, y - 0.8 * size, x + start + width, y + 0.25 * size};
}

} // namespace bsntest
