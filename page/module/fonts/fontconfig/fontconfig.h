// What the library and its debug twin ask of fontconfig, answered from the fonts that the page was given: a module in a browser
// has no others. given.cpp is behind it.
#pragma once

extern "C" {

typedef unsigned char FcChar8;
typedef int FcBool;
constexpr FcBool FcFalse = 0, FcTrue = 1;

#define FC_FAMILY "family"
#define FC_FILE "file"
#define FC_INDEX "index"
#define FC_LANG "lang"
#define FC_SCALABLE "scalable"
#define FC_SLANT "slant"
#define FC_WEIGHT "weight"
enum { FC_SLANT_ROMAN = 0, FC_SLANT_ITALIC = 100, FC_WEIGHT_REGULAR = 80, FC_WEIGHT_BOLD = 200 };

typedef enum { FcResultMatch, FcResultNoMatch } FcResult;
typedef enum { FcMatchPattern } FcMatchKind;
typedef struct FcConfig FcConfig;
typedef struct FcPattern FcPattern;
typedef struct FcObjectSet FcObjectSet;
typedef struct {
    int nfont;
} FcFontSet;

FcPattern *FcPatternCreate(void);
void FcPatternDestroy(FcPattern *pattern);
FcBool FcPatternAddString(FcPattern *pattern, const char *object, const FcChar8 *text);
FcBool FcPatternAddInteger(FcPattern *pattern, const char *object, int value);
FcBool FcPatternAddBool(FcPattern *pattern, const char *object, FcBool value);
FcResult FcPatternGetString(const FcPattern *pattern, const char *object, int n, FcChar8 **text);
FcResult FcPatternGetInteger(const FcPattern *pattern, const char *object, int n, int *value);

FcBool FcConfigSubstitute(FcConfig *config, FcPattern *pattern, FcMatchKind kind);
void FcDefaultSubstitute(FcPattern *pattern);
FcPattern *FcFontMatch(FcConfig *config, FcPattern *pattern, FcResult *result);

FcObjectSet *FcObjectSetBuild(const char *first, ...);
void FcObjectSetDestroy(FcObjectSet *objects);
FcFontSet *FcFontList(FcConfig *config, FcPattern *pattern, FcObjectSet *objects);
void FcFontSetDestroy(FcFontSet *fonts);

} // extern "C"
