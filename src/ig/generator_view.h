#pragma once
// The window of a generator block as the block sees it; there is none where the module has no windows.

#include <memory>
#include <string>

#include "ig/generator.h"
#include "sdk/views.h"

namespace NIg {

class ZCANopenIGNode;

class GeneratorView : public GeneratorWindow {
 public:
  /// Makes the window inside the site's parent. S_FALSE: there is no parent window.
  virtual HRESULT Create(NSdk::IWindowSite* site) = 0;
  virtual void Destroy() = 0;
  /// Null while there is no window.
  virtual void* Handle() const = 0;
  virtual void SetCaption(const std::wstring& caption) = 0;
  /// The lists have new contents.
  virtual void ListsReplaced() = 0;
  /// An item's result or its enabled flag has changed.
  virtual void ItemChanged(const ItemPlace& place) = 0;
  virtual void ActivityChanged() = 0;
  /// The number base in which items describe themselves.
  virtual void TextsChanged() = 0;
};

/// The block is borrowed and outlives its view. Null: the module has no windows here.
std::unique_ptr<GeneratorView> MakeGeneratorView(ZCANopenIGNode& block);

/// What is to become of lists that were changed and not saved.
enum class UnsavedAnswer { Save, Discard, Cancel };
UnsavedAnswer AskAboutUnsaved(void* parentWindow, const std::wstring& question);
/// Lets the user choose a sequence file, to be opened or saved; `proposed` may be empty. Empty: cancelled.
std::wstring ChooseSequenceFile(void* parentWindow, bool saving, const std::wstring& proposed);

}  // namespace NIg
