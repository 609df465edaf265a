#ifndef HOMELOOM_TV_MANPAGE_H
#define HOMELOOM_TV_MANPAGE_H

#include <string>

namespace homeloom::tv {

/// A page in the language of man(7). Texts are given as a person reads them.
class ManPage {
public:
    ManPage(const std::string& name, int section, const std::string& title);

    void head(const std::string& title);
    void subhead(const std::string& title);
    void paragraph(const std::string& text);
    void item(const std::string& name, const std::string& value, const std::string& text);
    void example(const std::string& text);

    const std::string& text() const { return _text; }

private:
    std::string _text;
};

/// "runs commands" as "Runs commands."
std::string asSentence(std::string text);

}  // namespace homeloom::tv

#endif
