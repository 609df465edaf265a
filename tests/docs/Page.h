#ifndef HOMELOOM_TESTS_DOCS_PAGE_H
#define HOMELOOM_TESTS_DOCS_PAGE_H

#include <functional>
#include <map>
#include <string>
#include <vector>

/// What the pages for UI developers say, read from their Markdown.

/// "KEY TYPE" of each, the type being "text", "int" or "bool"; where the page says what it means, "KEY TYPE: MEANING".
using DocumentedFields = std::vector<std::string>;

struct DocumentedRequest {
    std::string name;
    DocumentedFields arguments;
    std::string answer;  // "notify NAME" or "result NAME"; empty if the answer is not tied to the request
    DocumentedFields answerFields;
    std::string needs;
    std::string refusals;
    bool overtakes = false;
    std::string example;  // the console's line
};

struct DocumentedNotify {
    std::string when;
    DocumentedFields fields;
};

struct DocumentedEndpoint {
    std::vector<std::string> names;  // service name, interface type, device type
    DocumentedFields fields;
};

/// A JSON block of a page, and the table behind it: each row's cells by their columns' titles.
struct DocumentedExample {
    std::string json;
    std::vector<std::map<std::string, std::string>> rows;
};

/// A row of the table of a home's members in homes/README.md. What is bold in it must be there.
struct DocumentedMember {
    std::vector<std::string> names;  // in its first cell
    std::vector<std::string> parts;  // in its second one
    std::vector<std::string> required;
};

/// The lines of a file of the repository below one line, up to another. Throws if there are none.
std::vector<std::string> linesBelow(const std::string& file, const std::string& line,
                                    const std::function<bool(const std::string&)>& isEnd);

/// docs/requests.md
std::vector<DocumentedRequest> documentedRequests();
/// The notifies of docs/framework.md, by name.
std::map<std::string, DocumentedNotify> documentedNotifies();
/// The entries of the device list in docs/framework.md, by what they are.
std::map<std::string, DocumentedEndpoint> documentedEndpoints();

std::vector<DocumentedExample> documentedExamples(const std::string& file);
std::vector<DocumentedMember> documentedMembers();

#endif
