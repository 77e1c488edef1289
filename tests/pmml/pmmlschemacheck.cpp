#include "tests/pmml/pmmlschemacheck.h"

#include <charconv>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

#include <tinyxml2.h>

namespace pmmltest {

namespace {

using tinyxml2::XMLElement;

bool is(const XMLElement* e, const char* xsName) { return e != nullptr && std::strcmp(e->Name(), xsName) == 0; }

std::string attr(const XMLElement* e, const char* name) {
    const char* v = e->Attribute(name);
    return v == nullptr ? std::string() : std::string(v);
}

class Schema {
public:
    Schema() {
        const std::string path = std::string(BSN_SOURCE_DIR) + "/tests/data/pmml-4-4-grm-subset.xsd";
        if (m_doc.LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS) throw std::runtime_error("cannot read " + path);
        const XMLElement* root = m_doc.RootElement();
        m_namespace = attr(root, "targetNamespace");
        for (const XMLElement* d = root->FirstChildElement(); d != nullptr; d = d->NextSiblingElement()) {
            const std::string name = attr(d, "name");
            if (is(d, "xs:element")) m_elements[name] = d;
            else if (is(d, "xs:group")) m_groups[name] = d;
            else if (is(d, "xs:simpleType")) m_simpleTypes[name] = d;
            else if (is(d, "xs:complexType")) m_complexTypes[name] = d;
        }
    }

    std::vector<std::string> Check(const tinyxml2::XMLDocument& doc) const {
        std::vector<std::string> problems;
        const XMLElement* root = doc.RootElement();
        const auto decl = m_elements.find(root == nullptr ? "" : root->Name());
        if (root == nullptr || decl == m_elements.end() || std::strcmp(root->Name(), "PMML") != 0) {
            problems.push_back("the root element is not PMML");
            return problems;
        }
        if (attr(root, "xmlns") != m_namespace) problems.push_back("PMML: namespace is not " + m_namespace);
        checkElement(root, decl->second, "/PMML", problems);
        return problems;
    }

private:
    // --- simple values --------------------------------------------------------
    static bool isDouble(const std::string& v) {
        double d = 0.0;
        const auto r = std::from_chars(v.data(), v.data() + v.size(), d);
        return !v.empty() && r.ec == std::errc() && r.ptr == v.data() + v.size();
    }
    static bool isInteger(const std::string& v, bool nonNegative) {
        std::size_t i = (!nonNegative && v.size() > 1 && (v[0] == '-' || v[0] == '+')) ? 1 : 0;
        if (i == v.size()) return false;
        for (; i < v.size(); ++i)
            if (v[i] < '0' || v[i] > '9') return false;
        return true;
    }

    // Checks a value against a type name or an inline xs:simpleType.
    bool valueOk(const std::string& value, const std::string& type, const XMLElement* inlineType) const {
        const XMLElement* st = inlineType;
        if (st == nullptr) {
            if (type.empty() || type == "xs:string") return true;
            if (type == "xs:double") return isDouble(value);
            if (type == "xs:integer" || type == "xs:int") return isInteger(value, false);
            if (type == "xs:nonNegativeInteger") return isInteger(value, true);
            if (type == "xs:boolean") return value == "true" || value == "false" || value == "1" || value == "0";
            const auto it = m_simpleTypes.find(type);
            if (it == m_simpleTypes.end()) return true;  // a type of the full schema not kept here
            st = it->second;
        }
        const XMLElement* restriction = st->FirstChildElement("xs:restriction");
        if (restriction == nullptr) return true;
        if (!valueOk(value, attr(restriction, "base"), nullptr)) return false;
        bool anyEnum = false;
        for (const XMLElement* e = restriction->FirstChildElement("xs:enumeration"); e != nullptr;
             e = e->NextSiblingElement("xs:enumeration")) {
            anyEnum = true;
            if (attr(e, "value") == value) return true;
        }
        return !anyEnum;
    }

    // --- elements ---------------------------------------------------------------
    const XMLElement* complexTypeOf(const XMLElement* decl) const {
        if (const XMLElement* ct = decl->FirstChildElement("xs:complexType"); ct != nullptr) return ct;
        const auto it = m_complexTypes.find(attr(decl, "type"));
        return it == m_complexTypes.end() ? nullptr : it->second;
    }

    void checkAttributes(const XMLElement* e, const XMLElement* holder, const std::string& path,
                         std::vector<std::string>& problems) const {
        std::map<std::string, const XMLElement*> declared;
        for (const XMLElement* a = holder->FirstChildElement("xs:attribute"); a != nullptr;
             a = a->NextSiblingElement("xs:attribute"))
            declared[attr(a, "name")] = a;
        for (const tinyxml2::XMLAttribute* a = e->FirstAttribute(); a != nullptr; a = a->Next()) {
            const std::string name = a->Name();
            if (name == "xmlns" || name.rfind("xmlns:", 0) == 0) continue;
            const auto it = declared.find(name);
            if (it == declared.end()) {
                problems.push_back(path + ": attribute '" + name + "' is not declared");
                continue;
            }
            if (!valueOk(a->Value(), attr(it->second, "type"), it->second->FirstChildElement("xs:simpleType")))
                problems.push_back(path + ": attribute " + name + "='" + a->Value() + "' is not a valid " +
                                   attr(it->second, "type"));
        }
        for (const auto& [name, a] : declared)
            if (attr(a, "use") == "required" && e->Attribute(name.c_str()) == nullptr)
                problems.push_back(path + ": required attribute '" + name + "' is missing");
    }

    void checkElement(const XMLElement* e, const XMLElement* decl, const std::string& path,
                      std::vector<std::string>& problems) const {
        const XMLElement* ct = complexTypeOf(decl);
        if (ct == nullptr) return;
        if (const XMLElement* cc = ct->FirstChildElement("xs:complexContent"); cc != nullptr) {
            // Extension: any content; only its attributes are checked.
            if (const XMLElement* r = cc->FirstChildElement(); r != nullptr) checkAttributes(e, r, path, problems);
            return;
        }
        if (const XMLElement* sc = ct->FirstChildElement("xs:simpleContent"); sc != nullptr) {
            if (const XMLElement* x = sc->FirstChildElement(); x != nullptr) checkAttributes(e, x, path, problems);
            return;
        }
        checkAttributes(e, ct, path, problems);
        if (attr(ct, "mixed") != "true")
            for (const tinyxml2::XMLNode* n = e->FirstChild(); n != nullptr; n = n->NextSibling())
                if (n->ToText() != nullptr && std::string_view(n->Value()).find_first_not_of(" \t\r\n") !=
                                                  std::string_view::npos)
                    problems.push_back(path + ": text is not allowed here");

        std::vector<const XMLElement*> children;
        for (const XMLElement* c = e->FirstChildElement(); c != nullptr; c = c->NextSiblingElement())
            children.push_back(c);
        const XMLElement* particle = nullptr;
        for (const XMLElement* p = ct->FirstChildElement(); p != nullptr; p = p->NextSiblingElement())
            if (is(p, "xs:sequence") || is(p, "xs:choice") || is(p, "xs:group")) particle = p;
        std::size_t pos = 0;
        if (particle != nullptr) {
            const auto end = match(particle, children, 0, path, problems);
            if (!end) {
                problems.push_back(path + ": the children do not follow the content model");
                return;
            }
            pos = *end;
        }
        if (pos < children.size())
            problems.push_back(path + ": element " + children[pos]->Name() + " is not allowed at position " +
                               std::to_string(pos + 1));
    }

    static int occurs(const XMLElement* p, const char* which) {
        const std::string v = attr(p, which);
        if (v.empty()) return 1;
        if (v == "unbounded") return 1 << 30;
        return std::stoi(v);
    }

    // Matches particle p against children from pos; the position after the
    // match, or nothing when it fails.
    std::optional<std::size_t> match(const XMLElement* p, const std::vector<const XMLElement*>& children,
                                     std::size_t pos, const std::string& path,
                                     std::vector<std::string>& problems) const {
        const int lo = occurs(p, "minOccurs"), hi = occurs(p, "maxOccurs");
        if (is(p, "xs:any")) return children.size();
        if (is(p, "xs:element")) {
            const std::string ref = attr(p, "ref");
            const std::string name = ref.empty() ? attr(p, "name") : ref;
            const XMLElement* decl = p;
            if (!ref.empty()) {
                const auto it = m_elements.find(ref);
                if (it == m_elements.end()) throw std::runtime_error("schema: no element " + ref);
                decl = it->second;
            }
            int count = 0;
            while (count < hi && pos < children.size() && name == children[pos]->Name()) {
                checkElement(children[pos], decl, path + "/" + name + "[" + std::to_string(count + 1) + "]",
                             problems);
                ++pos;
                ++count;
            }
            if (count < lo) return std::nullopt;
            return pos;
        }
        const XMLElement* body = p;
        if (is(p, "xs:group")) {
            const auto it = m_groups.find(attr(p, "ref"));
            if (it == m_groups.end()) throw std::runtime_error("schema: no group " + attr(p, "ref"));
            body = it->second->FirstChildElement();
        }
        int count = 0;
        bool matchedEmpty = false;  // the body matched nothing, so it can repeat as often as needed
        while (count < hi) {
            std::optional<std::size_t> next;
            if (is(body, "xs:sequence")) {
                next = pos;
                for (const XMLElement* c = body->FirstChildElement(); c != nullptr && next; c = c->NextSiblingElement())
                    next = match(c, children, *next, path, problems);
            } else if (is(body, "xs:choice")) {
                for (const XMLElement* c = body->FirstChildElement(); c != nullptr; c = c->NextSiblingElement()) {
                    const auto r = match(c, children, pos, path, problems);
                    if (r && (!next || *r > *next)) next = r;
                    if (next && *next > pos) break;
                }
            }
            if (!next) break;
            ++count;
            if (*next == pos) {
                matchedEmpty = true;
                break;
            }
            pos = *next;
        }
        if (count < lo && !matchedEmpty) return std::nullopt;
        return pos;
    }

    tinyxml2::XMLDocument m_doc;
    std::string m_namespace;
    std::map<std::string, const XMLElement*> m_elements, m_groups, m_simpleTypes, m_complexTypes;
};

} // namespace

std::vector<std::string> CheckAgainstSchema(const std::string& xmlText) {
    static const Schema schema;
    tinyxml2::XMLDocument doc;
    if (doc.Parse(xmlText.c_str(), xmlText.size()) != tinyxml2::XML_SUCCESS)
        return {std::string("not well-formed XML: ") + doc.ErrorStr()};
    return schema.Check(doc);
}

std::string JoinProblems(const std::vector<std::string>& problems) {
    std::string s;
    for (const auto& p : problems) s += p + "\n";
    return s;
}

} // namespace pmmltest
