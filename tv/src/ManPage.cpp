#include "ManPage.h"

#include <cctype>

#include <fmt/format.h>

namespace homeloom::tv {

namespace {

// A dash that can be copied, no command at the start of a line, and no character that the formatter changes.
std::string escaped(const std::string& text) {
    std::string result;
    bool atStart = true;
    for (const char c : text) {
        if (atStart && (c == '.' || c == '\'')) {
            result += "\\&";
        }
        atStart = c == '\n';
        switch (c) {
            case '-':
                result += "\\-";
                break;
            case '\\':
                result += "\\e";
                break;
            case '\'':
                result += "\\(aq";
                break;
            default:
                result += c;
        }
    }
    return result;
}

}  // namespace

ManPage::ManPage(const std::string& name, int section, const std::string& title)
    : _text(fmt::format(".TH {} {} \"\" \"HomeLoom {}\"\n", name, section, HOMELOOM_VERSION)) {
    head("NAME");
    _text += escaped(name) + " \\- " + escaped(title) + "\n";
}

void ManPage::head(const std::string& title) {
    _text += ".SH " + title + "\n";
}

void ManPage::subhead(const std::string& title) {
    _text += ".SS " + title + "\n";
}

void ManPage::paragraph(const std::string& text) {
    _text += ".PP\n" + escaped(text) + "\n";
}

void ManPage::item(const std::string& name, const std::string& value, const std::string& text) {
    _text += ".TP\n\\fB" + escaped(name) + "\\fR";
    _text += value.empty() ? "\n" : " \\fI" + escaped(value) + "\\fR\n";
    _text += (text.empty() ? "\\&" : escaped(text)) + "\n";
}

void ManPage::example(const std::string& text) {
    _text += ".PP\n.in +4n\n.EX\n" + escaped(text) + "\n.EE\n.in\n";
}

std::string asSentence(std::string text) {
    if (!text.empty()) {
        text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    }
    return text + ".";
}

}  // namespace homeloom::tv
