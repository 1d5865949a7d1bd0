/*
 * zevch.h - the one public header of libzevch.
 *
 * A C-callable library of string primitives (search, compare, case, edit,
 * trim, hash, UTF-8/UTF-16 conversion) and a regular-expression engine with
 * template replacement and a parallel multi-pattern search.
 *
 * Conventions, for every function below:
 *   - A string is a pointer and a signed 32-bit length in elements.
 *   - The result is a zevStatus: 0 success, negative error, positive warning.
 *   - Arguments are checked in a fixed order (pointers, then lengths, then
 *     record content); a failed check writes no output.
 *   - Nothing here allocates, except zevsRegExpInitAlloc and
 *     zevsRegExpMultiInitAlloc; all other memory is the caller's.
 *
 * Usable from C99 and C++. Works on 32-bit and 64-bit x86 alike.
 */
#ifndef ZEVCH_H
#define ZEVCH_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t zevStatus;

/* Status codes. */
enum {
    zevStatusOk                 = 0,
    zevStatusPieceTruncated     = 27,   /* split: a piece was cut to its slot */
    zevStatusInputLeft          = 26,   /* split: slots ran out, source left */
    zevStatusEntryNotFound      = -2,
    zevStatusBadId              = -5,
    zevStatusBadSize            = -6,
    zevStatusBadFormat          = -7,
    zevStatusNullPointer        = -8,
    zevStatusTableFull          = -9,
    zevStatusBadLength          = -119,
    zevStatusRegExpBadProperty  = -183,
    zevStatusRegExpBadClass     = -184,
    zevStatusRegExpBadReference = -185,
    zevStatusRegExpBadSyntax    = -186,
    zevStatusRegExpBadRepeat    = -187,
    zevStatusRegExpMatchLimit   = -188,
    zevStatusRegExpBadState     = -189,
    zevStatusRegExpBadOptions   = -190
};

/* Option bits of a compiled pattern (letters g, i, m, s, x of the option string). */
enum {
    OptionDotAll     = 1,   /* s */
    OptionMultiLine  = 2,   /* m */
    OptionIgnoreCase = 4,   /* i */
    OptionExtended   = 8,   /* x */
    OptionGlobal     = 16   /* g */
};

/* Maximum of a repeat without limit. */
#define RepeatUnbounded 0x3FFFFFFF

typedef struct LibVersion {
    int32_t     major;
    int32_t     minor;
    int32_t     buildMajor;
    int32_t     buildMinor;
    char        targetCode[4];
    const char* fileName;
    const char* versionText;
    const char* buildDate;
} LibVersion;

typedef struct RegExpState        RegExpState;         /* opaque: caller sizes it */
typedef struct RegExpReplaceState RegExpReplaceState;  /* opaque: caller sizes it */
typedef struct RegExpMultiState   RegExpMultiState;    /* opaque: caller sizes it */

typedef struct RegExpFindEntry {
    const uint8_t* start;   /* into the subject; NULL for a group that took no part */
    int32_t        length;  /* bytes; -1 for a group that took no part */
} RegExpFindEntry;

typedef struct RegExpMultiResult {
    uint32_t         done;
    uint32_t         id;
    int32_t          findCount;
    zevStatus        status;
    RegExpFindEntry* find;
} RegExpMultiResult;

const LibVersion* zevchGetLibVersion(void);

/* ---- search family ---- */
zevStatus zevsFind_8u       (const uint8_t* src, int32_t srcLen, const uint8_t* needle, int32_t needleLen, int32_t* index);
zevStatus zevsFindRev_8u    (const uint8_t* src, int32_t srcLen, const uint8_t* needle, int32_t needleLen, int32_t* index);
zevStatus zevsFindC_8u      (const uint8_t* src, int32_t srcLen, uint8_t c, int32_t* index);
zevStatus zevsFindRevC_8u   (const uint8_t* src, int32_t srcLen, uint8_t c, int32_t* index);
zevStatus zevsFindCAny_8u   (const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, int32_t* index);
zevStatus zevsFindRevCAny_8u(const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, int32_t* index);
zevStatus zevsFind_Z_8u     (const uint8_t* src, const uint8_t* needle, int32_t* index);
zevStatus zevsFindC_Z_8u    (const uint8_t* src, uint8_t c, int32_t* index);

zevStatus zevsFind_16u       (const uint16_t* src, int32_t srcLen, const uint16_t* needle, int32_t needleLen, int32_t* index);
zevStatus zevsFindRev_16u    (const uint16_t* src, int32_t srcLen, const uint16_t* needle, int32_t needleLen, int32_t* index);
zevStatus zevsFindC_16u      (const uint16_t* src, int32_t srcLen, uint16_t c, int32_t* index);
zevStatus zevsFindRevC_16u   (const uint16_t* src, int32_t srcLen, uint16_t c, int32_t* index);
zevStatus zevsFindCAny_16u   (const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen, int32_t* index);
zevStatus zevsFindRevCAny_16u(const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen, int32_t* index);
zevStatus zevsFind_Z_16u     (const uint16_t* src, const uint16_t* needle, int32_t* index);
zevStatus zevsFindC_Z_16u    (const uint16_t* src, uint16_t c, int32_t* index);

/* ---- comparison ---- */
zevStatus zevsCompare_8u                (const uint8_t*  src1, const uint8_t*  src2, int32_t len, int32_t* result);
zevStatus zevsCompare_16u               (const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result);
zevStatus zevsCompareIgnoreCaseLatin_8u (const uint8_t*  src1, const uint8_t*  src2, int32_t len, int32_t* result);
zevStatus zevsCompareIgnoreCaseLatin_16u(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result);
zevStatus zevsCompareIgnoreCase_16u     (const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result);
zevStatus zevsEqual_8u                  (const uint8_t*  src1, const uint8_t*  src2, int32_t len, int32_t* result);
zevStatus zevsEqual_16u                 (const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result);

/* ---- case conversion (the full forms exist for 16u only) ---- */
zevStatus zevsLowercaseLatin_8u   (const uint8_t* src, uint8_t* dst, int32_t len);
zevStatus zevsUppercaseLatin_8u   (const uint8_t* src, uint8_t* dst, int32_t len);
zevStatus zevsLowercaseLatin_8u_I (uint8_t* srcDst, int32_t len);
zevStatus zevsUppercaseLatin_8u_I (uint8_t* srcDst, int32_t len);
zevStatus zevsLowercaseLatin_16u  (const uint16_t* src, uint16_t* dst, int32_t len);
zevStatus zevsUppercaseLatin_16u  (const uint16_t* src, uint16_t* dst, int32_t len);
zevStatus zevsLowercaseLatin_16u_I(uint16_t* srcDst, int32_t len);
zevStatus zevsUppercaseLatin_16u_I(uint16_t* srcDst, int32_t len);
zevStatus zevsLowercase_16u  (const uint16_t* src, uint16_t* dst, int32_t len);
zevStatus zevsUppercase_16u  (const uint16_t* src, uint16_t* dst, int32_t len);
zevStatus zevsLowercase_16u_I(uint16_t* srcDst, int32_t len);
zevStatus zevsUppercase_16u_I(uint16_t* srcDst, int32_t len);

/* ---- editing ---- */
zevStatus zevsInsert_8u  (const uint8_t* src, int32_t srcLen, const uint8_t* insert, int32_t insertLen, uint8_t* dst, int32_t start);
zevStatus zevsInsert_8u_I(const uint8_t* insert, int32_t insertLen, uint8_t* srcDst, int32_t* srcDstLen, int32_t start);
zevStatus zevsRemove_8u  (const uint8_t* src, int32_t srcLen, uint8_t* dst, int32_t start, int32_t removeLen);
zevStatus zevsRemove_8u_I(uint8_t* srcDst, int32_t* srcDstLen, int32_t start, int32_t removeLen);
zevStatus zevsConcat_8u  (const uint8_t* src1, int32_t len1, const uint8_t* src2, int32_t len2, uint8_t* dst);
zevStatus zevsConcat_8u_D2L (const uint8_t* const strings[], const int32_t lengths[], int32_t count, uint8_t* dst);
zevStatus zevsConcatC_8u_D2L(const uint8_t* const strings[], const int32_t lengths[], int32_t count, uint8_t delimiter, uint8_t* dst);
zevStatus zevsSplitC_8u_D2L (const uint8_t* src, int32_t srcLen, uint8_t delimiter, uint8_t* strings[], int32_t lengths[], int32_t* count);
zevStatus zevsReplaceC_8u(const uint8_t* src, uint8_t* dst, int32_t len, uint8_t oldC, uint8_t newC);

zevStatus zevsInsert_16u  (const uint16_t* src, int32_t srcLen, const uint16_t* insert, int32_t insertLen, uint16_t* dst, int32_t start);
zevStatus zevsInsert_16u_I(const uint16_t* insert, int32_t insertLen, uint16_t* srcDst, int32_t* srcDstLen, int32_t start);
zevStatus zevsRemove_16u  (const uint16_t* src, int32_t srcLen, uint16_t* dst, int32_t start, int32_t removeLen);
zevStatus zevsRemove_16u_I(uint16_t* srcDst, int32_t* srcDstLen, int32_t start, int32_t removeLen);
zevStatus zevsConcat_16u  (const uint16_t* src1, int32_t len1, const uint16_t* src2, int32_t len2, uint16_t* dst);
zevStatus zevsConcat_16u_D2L (const uint16_t* const strings[], const int32_t lengths[], int32_t count, uint16_t* dst);
zevStatus zevsConcatC_16u_D2L(const uint16_t* const strings[], const int32_t lengths[], int32_t count, uint16_t delimiter, uint16_t* dst);
zevStatus zevsSplitC_16u_D2L (const uint16_t* src, int32_t srcLen, uint16_t delimiter, uint16_t* strings[], int32_t lengths[], int32_t* count);
zevStatus zevsReplaceC_16u(const uint16_t* src, uint16_t* dst, int32_t len, uint16_t oldC, uint16_t newC);

/* ---- trimming ---- */
zevStatus zevsTrimC_8u        (const uint8_t* src, int32_t srcLen, uint8_t c, uint8_t* dst, int32_t* dstLen);
zevStatus zevsTrimC_8u_I      (uint8_t* srcDst, int32_t* srcDstLen, uint8_t c);
zevStatus zevsTrimCAny_8u     (const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, uint8_t* dst, int32_t* dstLen);
zevStatus zevsTrimStartCAny_8u(const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, uint8_t* dst, int32_t* dstLen);
zevStatus zevsTrimEndCAny_8u  (const uint8_t* src, int32_t srcLen, const uint8_t* set, int32_t setLen, uint8_t* dst, int32_t* dstLen);

zevStatus zevsTrimC_16u        (const uint16_t* src, int32_t srcLen, uint16_t c, uint16_t* dst, int32_t* dstLen);
zevStatus zevsTrimC_16u_I      (uint16_t* srcDst, int32_t* srcDstLen, uint16_t c);
zevStatus zevsTrimCAny_16u     (const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen, uint16_t* dst, int32_t* dstLen);
zevStatus zevsTrimStartCAny_16u(const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen, uint16_t* dst, int32_t* dstLen);
zevStatus zevsTrimEndCAny_16u  (const uint16_t* src, int32_t srcLen, const uint16_t* set, int32_t setLen, uint16_t* dst, int32_t* dstLen);

/* ---- hashing ---- */
zevStatus zevsHash_8u32u     (const uint8_t*  src, int32_t len, uint32_t* hash);
zevStatus zevsHash_16u32u    (const uint16_t* src, int32_t len, uint32_t* hash);
zevStatus zevsHashSJ2_8u32u  (const uint8_t*  src, int32_t len, uint32_t* hash);
zevStatus zevsHashSJ2_16u32u (const uint16_t* src, int32_t len, uint32_t* hash);
zevStatus zevsHashMSCS_8u32u (const uint8_t*  src, int32_t len, uint32_t* hash);
zevStatus zevsHashMSCS_16u32u(const uint16_t* src, int32_t len, uint32_t* hash);

/* ---- UTF conversion ---- */
zevStatus zevsConvertUTF_8u16u(const uint8_t*  src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen, int32_t bigEndian);
zevStatus zevsConvertUTF_16u8u(const uint16_t* src, uint32_t* srcLen, uint8_t*  dst, uint32_t* dstLen, int32_t bigEndian);

/* ---- compiled patterns ---- */
zevStatus zevsRegExpGetSize      (const char* pattern, int32_t* size);
zevStatus zevsRegExpInit         (const char* pattern, const char* options, RegExpState* state, int32_t* errOffset);
zevStatus zevsRegExpInitAlloc    (const char* pattern, const char* options, RegExpState** stateOut, int32_t* errOffset);
zevStatus zevsRegExpSetFormat    (int32_t format, RegExpState* state);
zevStatus zevsRegExpSetMatchLimit(int32_t limit, RegExpState* state);
void      zevsRegExpFree         (RegExpState* state);

/* ---- search ---- */
zevStatus zevsRegExpFind_8u(const uint8_t* src, int32_t srcLen, RegExpState* state, RegExpFindEntry* find, int32_t* findCount);

/* ---- replacement ---- */
zevStatus zevsRegExpReplaceGetSize(const char* replaceTemplate, int32_t* size);
zevStatus zevsRegExpReplaceInit   (const char* replaceTemplate, RegExpReplaceState* state);
zevStatus zevsRegExpReplace_8u(const uint8_t* src, int32_t* srcLen, uint8_t* dst, int32_t* dstLen,
                               RegExpFindEntry* find, int32_t* findCount,
                               RegExpState* pattern, const RegExpReplaceState* replaceState);

/* ---- multi-pattern sets ---- */
zevStatus zevsRegExpMultiGetSize  (uint32_t maxPatterns, uint32_t* size);
zevStatus zevsRegExpMultiInit     (RegExpMultiState* state, uint32_t maxPatterns);
zevStatus zevsRegExpMultiInitAlloc(RegExpMultiState** stateOut, uint32_t maxPatterns);
void      zevsRegExpMultiFree     (RegExpMultiState* state);
zevStatus zevsRegExpMultiAdd      (RegExpState* pattern, uint32_t id, RegExpMultiState* state);
zevStatus zevsRegExpMultiModify   (RegExpState* pattern, uint32_t id, RegExpMultiState* state);
zevStatus zevsRegExpMultiDelete   (uint32_t id, RegExpMultiState* state);
zevStatus zevsRegExpMultiFind_8u  (const uint8_t* src, int32_t srcLen, RegExpMultiResult* results, const RegExpMultiState* state);

#ifdef __cplusplus
}
#endif

#endif /* ZEVCH_H */
