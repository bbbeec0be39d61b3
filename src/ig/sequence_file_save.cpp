#include <fstream>
#include <memory>
#include <system_error>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "ig/sequence_file.h"
#include "ig/sequence_file_text.h"
#include "ig/sequence_file_xml.h"
#include "resources/print.h"

namespace NIg {

namespace {

using NCanopen::InFile;
using NCanopen::ItemField;

constexpr XMLCh kNewLine[] = u"\r\n";

// The library's own file target drops what goes wrong when the file is closed, a full disk for one. This one
// also removes the file again unless it is complete.
class FileTarget final : public xercesc::XMLFormatTarget {
 public:
  explicit FileTarget(const std::filesystem::path& path)
      : mPath(path),
        mFile(path, std::ios::out | std::ios::binary | std::ios::trunc),
        mBegun(mFile.is_open()) {}
  ~FileTarget() override {
    if (!mBegun || mComplete) return;
    mFile.close();
    std::error_code ignored;
    std::filesystem::remove(mPath, ignored);
  }
  FileTarget(const FileTarget&) = delete;
  FileTarget& operator=(const FileTarget&) = delete;

  void writeChars(const XMLByte* bytes, XMLSize_t count, xercesc::XMLFormatter*) override {
    mFile.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  }
  bool IsOpen() const { return mBegun; }
  /// True when all that was written has reached the file.
  bool Complete() {
    mFile.close();
    mComplete = !mFile.fail();
    return mComplete;
  }

 private:
  const std::filesystem::path mPath;
  std::ofstream mFile;
  const bool mBegun;
  bool mComplete = false;
};

template <class Object>
struct Releaser {
  void operator()(Object* object) const { object->release(); }
};
template <class Object>
using Released = std::unique_ptr<Object, Releaser<Object>>;

class DocumentWriter {
 public:
  DocumentWriter(xercesc::DOMDocument& document, std::string& fault) : mDocument(document), mFault(fault) {}

  void AppendList(const char* tag, const NCanopen::ItemList& items, bool cyclic) {
    xercesc::DOMElement* list = NewElement(tag);
    mDocument.getDocumentElement()->appendChild(list);
    for (const auto& item : items) list->appendChild(ItemElement(*item, cyclic));
  }

 private:
  xercesc::DOMElement* NewElement(const char* name) {
    return mDocument.createElement(FromAscii(name).c_str());
  }

  xercesc::DOMElement* ItemElement(const NCanopen::ZMsgItemInfo& item, bool cyclic) {
    xercesc::DOMElement* element = NewElement(item.GetTypeName());
    for (const ItemField& field : NCanopen::KindOf(item).fields) {
      if (field.inFile == InFile::Absent || (field.inFile == InFile::CyclicOnly && !cyclic)) continue;
      SetAttribute(*element, field.key, FieldText(item, field));
    }
    SetAttribute(*element, "Enabled", FromAscii(NumberText(item.GetEnabled(), NCanopen::Encoding::Decimal)));
    return element;
  }

  XmlText FieldText(const NCanopen::ZMsgItemInfo& item, const ItemField& field) {
    if (field.encoding != NCanopen::Encoding::Text) {
      return FromAscii(NumberText(field.number(item), field.encoding));
    }
    bool exact = true;
    XmlText text = DataForFile(field.text(item), &exact);
    if (!exact) {
      mFault =
          NResources::Print("%s item: characters of \"%s\" that a sequence file cannot hold became \"?\"",
                            item.GetTypeName(), field.key);
    }
    return text;
  }

  static void SetAttribute(xercesc::DOMElement& element, const char* name, const XmlText& value) {
    element.setAttribute(FromAscii(name).c_str(), value.c_str());
  }

  xercesc::DOMDocument& mDocument;
  std::string& mFault;
};

// Links are files here: the link is deleted, not what it points at.
bool IsFile(const std::filesystem::file_status& status) {
  return std::filesystem::is_regular_file(status) || std::filesystem::is_symlink(status);
}

// False when something stands at `path` that must be neither deleted nor written to: a folder, a device, a
// pipe.
bool MakeRoom(const std::filesystem::path& path) {
  std::error_code ignored;
  const auto status = std::filesystem::symlink_status(path, ignored);
  if (IsFile(status)) std::filesystem::remove(path, ignored);
  return IsFile(status) || !std::filesystem::exists(status);
}

bool Write(xercesc::DOMLSSerializer& serializer, const xercesc::DOMDocument& document,
           xercesc::DOMImplementation& implementation, FileTarget& target) {
  const Released<xercesc::DOMLSOutput> output(implementation.createLSOutput());
  output->setByteStream(&target);
  return serializer.write(&document, output.get());
}

// As SaveSequenceFile, with the library set up and room made for the file.
int SaveDocument(const std::filesystem::path& path, const NCanopen::ItemList& sequence,
                 const NCanopen::ItemList& cyclic, std::string& fault, bool& written) {
  auto* implementation = xercesc::DOMImplementationRegistry::getDOMImplementation(FromAscii("LS").c_str());
  const Released<xercesc::DOMLSSerializer> serializer(implementation->createLSSerializer());
  serializer->setNewLine(kNewLine);
  serializer->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
  const Released<xercesc::DOMDocument> document(
      implementation->createDocument(nullptr, FromAscii("CANopenIG").c_str(), nullptr));
  if (document->getDocumentElement() == nullptr) return 0;

  DocumentWriter writer(*document, fault);
  writer.AppendList("Sequence", sequence, false);
  writer.AppendList("CyclicMsgs", cyclic, true);

  FileTarget target(path);
  if (!target.IsOpen()) {
    fault = "the file cannot be created";
  } else {
    written = Write(*serializer, *document, *implementation, target) && target.Complete();
    if (!written) fault = "the file cannot be written completely";
  }
  return 1;
}

}  // namespace

int SaveSequenceFile(const std::filesystem::path& path, const NCanopen::ItemList& sequence,
                     const NCanopen::ItemList& cyclic, std::string* fault, bool* written) {
  std::string unasked;
  std::string& text = fault != nullptr ? *fault : unasked;
  text.clear();
  bool complete = false;
  int result = 1;
  if (path.empty()) {
    text = "the file has no name";
  } else if (!MakeRoom(path)) {
    text = "something that is not a file has this name";
  } else {
    WithXmlLibrary(text, [&] { result = SaveDocument(path, sequence, cyclic, text, complete); });
  }
  if (written != nullptr) *written = complete;
  return result;
}

}  // namespace NIg
