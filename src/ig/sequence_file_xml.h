#pragma once
// The XML library as the sequence file needs it: set up for one call, and reading under limits.

#include <functional>
#include <string>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

namespace NIg {

/// Sets the library up, runs `action` and takes it down again: nothing of it stays behind, so the module can
/// be unloaded. False with the reason in `fault` when the library cannot be set up or `action` throws what it
/// or a lack of memory throws.
bool WithXmlLibrary(std::string& fault, const std::function<void()>& action);

// A sequence file is flat and plain. These bounds lie far above any list of messages and keep a hostile file
// from filling the memory.
inline constexpr unsigned kMaxXmlDepth = 100;
inline constexpr std::size_t kMaxXmlNodes = 8'000'000;  // elements and attributes
inline constexpr std::size_t kMaxXmlAttributes = 100;   // of one element

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

  std::string mFault;
  unsigned mDepth = 0;
  std::size_t mNodes = 0;
};

}  // namespace NIg
