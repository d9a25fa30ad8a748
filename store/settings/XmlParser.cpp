#include "store/settings/XmlParser.h"

#include <VeloraText/Character.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <string_view>

namespace Velora::Store {
namespace {

std::string ListOf(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) {
    list += (list.empty() ? "" : ", ") + InQuotes(name);
  }
  return list.empty() ? "none" : list;
}

// Checked here, because the parser would accept UTF-16, and does not say which bytes are not UTF-8.
void ExpectUtf8(std::string_view content) {
  if (content.starts_with("\xFF\xFE") || content.starts_with("\xFE\xFF")) {
    throw XmlFault(0, "the file is in UTF-16; expected UTF-8");
  }
  for (std::size_t at = 0; at < content.size();) {
    const std::size_t length = Text::SequenceLength(content.substr(at));
    if (length == 0 || content[at] == '\0') {
      throw XmlFault(at, length == 0 ? "bytes that are not UTF-8; expected the file to be saved in UTF-8"
                                     : "unexpected zero byte; expected text");
    }
    at += length;
  }
}

bool IsUtf8(const char* encoding) {
  std::string name = encoding;
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c); });
  return name == "UTF-8";
}

class Parser {
 public:
  Parser(const std::string& content, const std::vector<XmlLevel>& levels) : content(content), levels(levels) {
    if (!expat) {
      throw std::bad_alloc();
    }
    XML_SetUserData(expat.get(), this);
    XML_SetXmlDeclHandler(expat.get(), [](void* self, const char*, const char* encoding, int) {
      Guard(self, [&](Parser& parser) { parser.Declare(encoding); });
    });
    XML_SetStartDoctypeDeclHandler(expat.get(), [](void* self, const char*, const char*, const char*, int) {
      Guard(self, [](Parser& parser) { parser.RefuseDoctype(); });
    });
    XML_SetElementHandler(
        expat.get(),
        [](void* self, const char* name, const char** attributes) {
          Guard(self, [&](Parser& parser) { parser.Start(name, attributes); });
        },
        [](void* self, const char*) { Guard(self, [](Parser& parser) { parser.open.pop_back(); }); });
    XML_SetCharacterDataHandler(expat.get(), [](void* self, const char* text, int length) {
      Guard(self, [&](Parser& parser) { parser.RefuseText({text, static_cast<std::size_t>(length)}); });
    });
  }

  std::vector<XmlElement> Run() {
    if (XML_Parse(expat.get(), content.data(), static_cast<int>(content.size()), XML_TRUE) == XML_STATUS_OK) {
      return std::move(elements);
    }
    if (raised) {
      std::rethrow_exception(raised);
    }
    const XML_Error error = XML_GetErrorCode(expat.get());
    if (error == XML_ERROR_NO_MEMORY) {
      throw std::bad_alloc();
    }
    throw FaultOf(error, content, Offset(), Root(), open.empty() ? "" : open.back());
  }

 private:
  // No exception may pass through the parser, which is in C. The first one is kept, and thrown when the parser returns.
  template <typename Action>
  static void Guard(void* self, const Action& action) noexcept {
    auto& parser = *static_cast<Parser*>(self);
    if (parser.raised) {
      return;  // the element was refused at its start
    }
    try {
      action(parser);
    } catch (...) {
      parser.raised = std::current_exception();
      XML_StopParser(parser.expat.get(), XML_FALSE);
    }
  }

  void Declare(const char* encoding) const {
    if (encoding != nullptr && !IsUtf8(encoding)) {
      throw XmlFault(Offset(), "encoding " + InQuotes(encoding) +
                                   " is not read; expected encoding=\"UTF-8\", and the file saved in it");
    }
  }

  void RefuseDoctype() const {
    throw XmlFault(content.rfind("<!DOCTYPE", Offset()),
                   "unexpected '<!DOCTYPE'; expected a file without it, with characters instead of its entities");
  }

  void Start(const std::string& name, const char** attributes) {
    if (open.empty() && name != Root()) {
      throw XmlFault(Offset(), "unexpected " + InQuotes(name) + "; expected one element " + InQuotes(Root()));
    }
    const std::vector<std::string>& known = FormOf(name).attributes;
    XmlElement element{name, {}, Offset()};
    for (; *attributes != nullptr; attributes += 2) {
      if (std::find(known.begin(), known.end(), *attributes) == known.end()) {
        throw XmlFault(element.offset, InQuotes(name) + " has an unknown attribute " + InQuotes(*attributes) +
                                           "; expected: " + ListOf(known));
      }
      element.attributes[attributes[0]] = attributes[1];
    }
    elements.push_back(std::move(element));
    open.push_back(name);
  }

  const XmlForm& FormOf(const std::string& name) const {
    if (open.size() < levels.size()) {
      for (const XmlForm& form : levels[open.size()]) {
        if (form.element == name) {
          return form;
        }
      }
    }
    throw XmlFault(Offset(), "unknown element " + InQuotes(name) + "; expected " + Expected());
  }

  void RefuseText(std::string_view text) const {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first != std::string_view::npos) {
      const std::string_view word = text.substr(first, text.find_last_not_of(blanks) + 1 - first);
      throw XmlFault(Offset() + first, "unexpected text " + InQuotes(word) + "; expected " + Expected());
    }
  }

  std::string Expected() const {
    if (open.size() == levels.size()) {
      return "nothing";
    }
    std::vector<std::string> names;
    for (const XmlForm& form : levels[open.size()]) {
      names.push_back(form.element);
    }
    return "elements " + ListOf(names);
  }
  const std::string& Root() const { return levels.front().front().element; }
  std::size_t Offset() const {
    const XML_Index index = XML_GetCurrentByteIndex(expat.get());
    return index < 0 ? content.size() : static_cast<std::size_t>(index);
  }

  const std::string& content;
  const std::vector<XmlLevel>& levels;
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> expat{XML_ParserCreate("UTF-8"), &XML_ParserFree};
  std::vector<XmlElement> elements;
  std::vector<std::string> open;  // the names of the open elements
  std::exception_ptr raised;
};

}  // namespace

std::string XmlElement::Value(const std::string& attribute) const {
  const auto found = attributes.find(attribute);
  return found == attributes.end() ? "" : found->second;
}

std::vector<XmlElement> ParseXml(const std::string& content, const std::vector<XmlLevel>& levels) {
  ExpectUtf8(content);
  return Parser(content, levels).Run();
}

}  // namespace Velora::Store
