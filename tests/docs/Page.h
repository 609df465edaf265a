#ifndef HOMELOOM_TESTS_DOCS_PAGE_H
#define HOMELOOM_TESTS_DOCS_PAGE_H

#include <functional>
#include <map>
#include <string>
#include <vector>

/// What the pages for UI developers say, read from their Markdown.

/// "KEY TYPE" of each; the type is "text", "int" or "bool".
using DocumentedFields = std::vector<std::string>;

struct DocumentedRequest {
    std::string name;
    DocumentedFields arguments;
    std::string answer;  // "notify NAME" or "result NAME"; empty if the answer is not tied to the request
    DocumentedFields answerFields;
    bool needsNothing = false;
    bool overtakes = false;
    std::string example;  // the console's line
};

/// The lines of a file of the repository below one line, up to another. Throws if there are none.
std::vector<std::string> linesBelow(const std::string& file, const std::string& line,
                                    const std::function<bool(const std::string&)>& isEnd);

/// docs/requests.md
std::vector<DocumentedRequest> documentedRequests();
/// The notifies of docs/framework.md, by name.
std::map<std::string, DocumentedFields> documentedNotifies();
/// The extra data of endpoints in docs/framework.md.
DocumentedFields documentedEndpointFields();

#endif
