#pragma once
// Where the texts of a language stand; read by the resource compiler and by C++. The build defines
// OSTREL_LANGUAGE.

#define QUOTED_AS_IT_IS(words) #words
#define QUOTED(words) QUOTED_AS_IT_IS(words)
// A blank would become part of the file's name.
// clang-format off
#define LANGUAGE_FILE QUOTED(resources/languages/OSTREL_LANGUAGE.inc)
// clang-format on
