#include "host/dbmanager/database.h"

#include <memory>

#include "host/runtime/com_guard.h"
#include "host/runtime/text.h"

namespace NDatabases {
namespace {

using NRuntime::Guarded;
using NRuntime::HandOut;
using NRuntime::HandOutNew;

// What nodes, messages and signals point into lives as long as the last of them.
using Content = std::shared_ptr<const Database>;

HRESULT HandOutText(const std::string& utf8, wchar_t** result) {
  return Guarded([&] { return NRuntime::HandOutText(NRuntime::ToWide(utf8), result); });
}

std::uint32_t Count(std::size_t count) { return static_cast<std::uint32_t>(count); }

// The attributes of an object, with the interface that is its own behind them.
template <class Interface>
class WithAttributes : public NRuntime::Implements<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (!object || iid != NSdk::IidOf<NSdk::ICanAttributes>()) {
      return NRuntime::Implements<Interface>::QueryInterface(iid, object);
    }
    *object = static_cast<NSdk::ICanAttributes*>(this);
    this->AddRef();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetNumber(const wchar_t* name, double* value) override {
    if (!name) return E_POINTER;
    return Guarded([&] {
      const AttributeValue* const found = Find(name);
      return found && found->hasNumber ? HandOut(found->number, value) : S_FALSE;
    });
  }

  HRESULT STDMETHODCALLTYPE GetText(const wchar_t* name, wchar_t** text) override {
    if (!name) return E_POINTER;
    return Guarded([&] {
      const AttributeValue* const found = Find(name);
      return found && found->hasText ? HandOutText(found->text, text) : S_FALSE;
    });
  }

 protected:
  WithAttributes(Content content, ObjectKind kind, const AttributeValues& own)
      : mContent(std::move(content)), mKind(kind), mOwn(own) {}

  const Content mContent;

 private:
  const AttributeValue* Find(const wchar_t* name) const {
    return mContent->Find(mKind, mOwn, NRuntime::ToUtf8(std::wstring_view(name)));
  }

  const ObjectKind mKind;
  const AttributeValues& mOwn;
};

class NodeObject final : public WithAttributes<NSdk::ICanDatabaseNode> {
 public:
  NodeObject(Content content, const Node& node)
      : WithAttributes(std::move(content), ObjectKind::Node, node.attributes), mNode(node) {}
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override { return HandOutText(mNode.name, name); }
  HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) override {
    return HandOutText(mNode.comment, comment);
  }

 private:
  const Node& mNode;
};

class SignalObject final : public WithAttributes<NSdk::ICanDatabaseSignal> {
 public:
  SignalObject(Content content, const Signal& signal)
      : WithAttributes(std::move(content), ObjectKind::Signal, signal.attributes), mSignal(signal) {}
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override { return HandOutText(mSignal.name, name); }
  HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) override {
    return HandOutText(mSignal.comment, comment);
  }
  HRESULT STDMETHODCALLTYPE GetUnit(wchar_t** unit) override { return HandOutText(mSignal.unit, unit); }
  HRESULT STDMETHODCALLTYPE GetLayout(NSdk::CanSignalLayout* layout) override {
    return HandOut(mSignal.layout, layout);
  }
  HRESULT STDMETHODCALLTYPE GetMultiplexing(wchar_t** text) override {
    return HandOutText(mSignal.multiplexing, text);
  }

 private:
  const Signal& mSignal;
};

class MessageObject final : public WithAttributes<NSdk::ICanDatabaseMessage> {
 public:
  MessageObject(Content content, const Message& message)
      : WithAttributes(std::move(content), ObjectKind::Message, message.attributes), mMessage(message) {}
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override { return HandOutText(mMessage.name, name); }
  HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) override {
    return HandOutText(mMessage.comment, comment);
  }
  HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* identifier, std::uint32_t* extended) override {
    if (!identifier || !extended) return E_POINTER;
    *extended = mMessage.extended;
    return HandOut(mMessage.identifier, identifier);
  }
  HRESULT STDMETHODCALLTYPE GetSize(std::uint32_t* size) override { return HandOut(mMessage.size, size); }
  HRESULT STDMETHODCALLTYPE GetSender(wchar_t** name) override { return HandOutText(mMessage.sender, name); }
  HRESULT STDMETHODCALLTYPE GetSignalCount(std::uint32_t* count) override {
    return HandOut(Count(mMessage.signalList.size()), count);
  }
  HRESULT STDMETHODCALLTYPE GetSignalAt(std::uint32_t position, NSdk::ICanDatabaseSignal** signal) override {
    if (position >= mMessage.signalList.size()) return E_INVALIDARG;
    return HandOutNew<SignalObject>(signal, mContent, mMessage.signalList[position]);
  }

 private:
  const Message& mMessage;
};

class DatabaseObject final : public WithAttributes<NSdk::ICanDatabase> {
 public:
  DatabaseObject(const std::filesystem::path& path, const Content& content)
      : WithAttributes(content, ObjectKind::Network, content->attributes), mPath(NRuntime::PathText(path)) {}
  HRESULT STDMETHODCALLTYPE GetPath(wchar_t** path) override { return HandOutText(mPath, path); }
  HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) override {
    return HandOutText(mContent->comment, comment);
  }
  HRESULT STDMETHODCALLTYPE GetNodeCount(std::uint32_t* count) override {
    return HandOut(Count(mContent->nodes.size()), count);
  }
  HRESULT STDMETHODCALLTYPE GetNodeAt(std::uint32_t position, NSdk::ICanDatabaseNode** node) override {
    if (position >= mContent->nodes.size()) return E_INVALIDARG;
    return HandOutNew<NodeObject>(node, mContent, mContent->nodes[position]);
  }
  HRESULT STDMETHODCALLTYPE GetMessageCount(std::uint32_t* count) override {
    return HandOut(Count(mContent->messages.size()), count);
  }
  HRESULT STDMETHODCALLTYPE GetMessageAt(std::uint32_t position,
                                         NSdk::ICanDatabaseMessage** message) override {
    if (position >= mContent->messages.size()) return E_INVALIDARG;
    return HandOutNew<MessageObject>(message, mContent, mContent->messages[position]);
  }
  HRESULT STDMETHODCALLTYPE GetErrorCount(std::uint32_t* count) override {
    return HandOut(Count(mContent->errors.size()), count);
  }
  HRESULT STDMETHODCALLTYPE GetError(std::uint32_t position, std::uint32_t* line, wchar_t** text) override {
    if (position >= mContent->errors.size()) return E_INVALIDARG;
    const DbcError& error = mContent->errors[position];
    const HRESULT result = text ? HandOutError(error, text) : S_OK;
    if (SUCCEEDED(result) && line) *line = error.line;
    return result;
  }

 private:
  HRESULT HandOutError(const DbcError& error, wchar_t** text) const {
    return Guarded(
        [&] { return HandOutText(mPath + ':' + std::to_string(error.line) + ": " + error.text, text); });
  }

  const std::string mPath;
};

}  // namespace

NRuntime::ComPtr<NSdk::ICanDatabase> MakeDatabase(const std::filesystem::path& path, Database content) {
  const auto shared = std::make_shared<const Database>(std::move(content));
  return NRuntime::ComPtr<NSdk::ICanDatabase>::Own(new DatabaseObject(path, shared));
}

}  // namespace NDatabases
