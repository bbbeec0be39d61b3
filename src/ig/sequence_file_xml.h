#pragma once
// The XML library as the sequence file needs it: set up for one call, and reading under limits.

#include <functional>
#include <string>
#include <unordered_set>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include "ig/sequence_file_text.h"

namespace NIg {

/// Sets the library up, runs `action` and takes it down again: nothing of it stays behind, so the module can
/// be unloaded. False with the reason in `fault` when the library cannot be set up or `action` throws what it
/// or a lack of memory throws.
bool WithXmlLibrary(std::string& fault, const std::function<void()>& action);

// A sequence file is flat and plain. These bounds lie far above any list of messages (there is room for
// 200 000 items) and keep a hostile file from filling memory and time; the library looks names up in lists.
inline constexpr unsigned kMaxXmlDepth = 100;
inline constexpr std::size_t kMaxXmlNodes = 3'000'000;  // elements and attributes
inline constexpr std::size_t kMaxXmlAttributes = 100;   // of one element
inline constexpr std::size_t kMaxXmlNames = 1000;       // different ones, of elements and attributes

/// Builds a document of elements and attributes alone and opens nothing beside the text that it is given. A
/// text beyond the limits above or with a document type of its own (which is what entities need) is refused.
class ItemParser final : private xercesc::XercesDOMParser {
 public:
  ItemParser();

  /// The document, owned by this object; null when `text` cannot be parsed, with the reason in `fault`.
  xercesc::DOMDocument* Parse(const std::string& text, std::string& fault);

 private:
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned uriId, const XMLCh* prefix,
                    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                    bool isEmpty, bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned uriId, bool isRoot,
                  const XMLCh* prefix) override;
  void startIntSubset() override;
  void error(unsigned code, const XMLCh* domain, ErrTypes type, const XMLCh* text, const XMLCh* systemId,
             const XMLCh* publicId, XMLFileLoc line, XMLFileLoc column) override;
  // Not part of a sequence file, and only memory when kept.
  void docCharacters(const XMLCh*, XMLSize_t, bool) override {}
  void ignorableWhitespace(const XMLCh*, XMLSize_t, bool) override {}
  void docComment(const XMLCh*) override {}
  void docPI(const XMLCh*, const XMLCh*) override {}

  [[noreturn]] void Refuse(const char* reason);

  void CountName(const XMLCh* name);

  std::string mFault;
  std::unordered_set<XmlText> mNames;
  unsigned mDepth = 0;
  std::size_t mNodes = 0;
};

}  // namespace NIg
