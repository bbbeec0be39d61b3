#include "ig/sequence_file_xml.h"

#include <new>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

#include "ig/sequence_file_text.h"
#include "resources/print.h"

namespace NIg {

namespace {

// Attributes of one element are only counted when all of them have been read, which for some millions takes
// long. There are no more of them than equals signs behind a "<"; some may stand in values.
constexpr std::size_t kMaxEqualsSigns = 100'000;

bool HasCrowdedTag(const std::string& text) {
  std::size_t count = 0;
  for (const char character : text) {
    if (character == '<') count = 0;
    if (character == '=' && ++count > kMaxEqualsSigns) return true;
  }
  return false;
}

constexpr const char* kTooManyAttributes = "an element has too many attributes";
constexpr const char* kOutOfMemory = "out of memory";

struct Refusal {};  // ends the parser; the reason is in mFault

class XmlLibrary {
 public:
  XmlLibrary() { xercesc::XMLPlatformUtils::Initialize(); }
  ~XmlLibrary() { xercesc::XMLPlatformUtils::Terminate(); }
  XmlLibrary(const XmlLibrary&) = delete;
  XmlLibrary& operator=(const XmlLibrary&) = delete;
};

std::string Located(XMLFileLoc line, XMLFileLoc column, const std::string& text) {
  if (line == 0) return text;
  return NResources::Print("line %d, column %d: %s", line, column, text);
}

// The library's exceptions use the library when they are destroyed, so they end in here.
std::string FaultOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const xercesc::OutOfMemoryException&) {
    return kOutOfMemory;
  } catch (const xercesc::XMLException& exception) {
    return ToLocal(exception.getMessage());
  } catch (const xercesc::DOMException& exception) {
    return ToLocal(exception.getMessage());
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }
  return {};
}

}  // namespace

bool WithXmlLibrary(std::string& fault, const std::function<void()>& action) {
  std::string thrown;
  try {
    const XmlLibrary library;
    thrown = FaultOf(action);
  } catch (const xercesc::XMLException&) {
    thrown = "the XML library cannot be set up";
  } catch (const xercesc::OutOfMemoryException&) {
    thrown = kOutOfMemory;
  }
  if (!thrown.empty()) fault = thrown;
  return thrown.empty();
}

ItemParser::ItemParser() {
  setValidationScheme(Val_Never);
  setLoadExternalDTD(false);
  setDisableDefaultEntityResolution(true);
  getScanner()->setErrorReporter(this);
}

xercesc::DOMDocument* ItemParser::Parse(const std::string& text, std::string& fault) {
  if (HasCrowdedTag(text)) {
    fault = kTooManyAttributes;
    return nullptr;
  }
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "");
  try {
    parse(source);
  } catch (const Refusal&) {
  }
  if (mFault.empty()) return getDocument();
  fault = mFault;
  return nullptr;
}

void ItemParser::Refuse(const char* reason) {
  const xercesc::Locator* place = getScanner()->getLocator();
  mFault = Located(place->getLineNumber(), place->getColumnNumber(), reason);
  throw Refusal();
}

void ItemParser::CountName(const XMLCh* name) {
  mNames.insert(name);
  if (mNames.size() > kMaxXmlNames) Refuse("too many different names");
}

void ItemParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned uriId, const XMLCh* prefix,
                              const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                              XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
  if (mDepth >= kMaxXmlDepth) Refuse("elements are nested too deeply");
  if (attributeCount > kMaxXmlAttributes) Refuse(kTooManyAttributes);
  mNodes += 1 + attributeCount;
  if (mNodes > kMaxXmlNodes) Refuse("too many elements and attributes");
  CountName(declaration.getFullName());
  for (XMLSize_t at = 0; at < attributeCount; ++at) CountName(attributes.elementAt(at)->getQName());
  ++mDepth;  // the end of an empty element is called as well
  XercesDOMParser::startElement(declaration, uriId, prefix, attributes, attributeCount, isEmpty, isRoot);
}

void ItemParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned uriId, bool isRoot,
                            const XMLCh* prefix) {
  --mDepth;
  XercesDOMParser::endElement(declaration, uriId, isRoot, prefix);
}

void ItemParser::startIntSubset() { Refuse("a sequence file has no document type of its own"); }

void ItemParser::error(unsigned, const XMLCh*, ErrTypes type, const XMLCh* text, const XMLCh*, const XMLCh*,
                       XMLFileLoc line, XMLFileLoc column) {
  if (type == ErrType_Fatal && mFault.empty()) mFault = Located(line, column, ToLocal(text));
}

}  // namespace NIg
