#ifndef HOMELOOM_TESTS_DOCS_PAGE_H
#define HOMELOOM_TESTS_DOCS_PAGE_H

#include <map>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

/// What the pages for UI developers say, read from their Markdown.

/// Key and type: "text", "int" or "bool".
struct DocumentedField {
    std::string key;
    std::string type;
    bool operator==(const DocumentedField& other) const { return key == other.key && type == other.type; }
    bool operator<(const DocumentedField& other) const { return std::tie(key, type) < std::tie(other.key, other.type); }
};
inline void PrintTo(const DocumentedField& field, std::ostream* out) {
    *out << field.key << " " << field.type;
}
using DocumentedFields = std::vector<DocumentedField>;

struct DocumentedRequest {
    std::string name;
    DocumentedFields arguments;
    std::string answer;  // "notify NAME" or "result NAME"; empty if the answer is not tied to the request
    DocumentedFields answerFields;
    bool needsNothing = false;
    bool overtakes = false;
    std::string example;  // the console's line
};

/// The lines of a file of the repository. Throws if it isn't there.
std::vector<std::string> linesOf(const std::string& file);

/// docs/requests.md
std::vector<DocumentedRequest> documentedRequests();
/// The notifies of docs/framework.md, by name.
std::map<std::string, DocumentedFields> documentedNotifies();
/// The extra data of endpoints in docs/framework.md.
DocumentedFields documentedEndpointFields();

#endif
