#include "ig/generator_view.h"

namespace NIg {

std::unique_ptr<GeneratorView> MakeGeneratorView(ZCANopenIGNode&) { return nullptr; }

// Without windows nobody can be asked, and who drives the block saves its lists himself.
UnsavedAnswer AskAboutUnsaved(void*, const std::wstring&) { return UnsavedAnswer::Discard; }

std::wstring ChooseSequenceFile(void*, bool, const std::wstring&) { return {}; }

}  // namespace NIg
