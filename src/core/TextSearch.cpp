#include "TextSearch.h"

#include <QtAlgorithms>

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace TextSearch {

qsizetype find(const char16_t *text, qsizetype size, std::u16string_view key, qsizetype from)
{
    const auto m = qsizetype(key.size());
    if (m == 0) return from <= size ? from : -1;
    qsizetype i = from;
#if defined(__SSE2__)
    // Many positions at a time: a position is a candidate only when both the key's first unit
    // and its last unit (m - 1 further on) are in place, which rules out nearly every position
    // with two compares; the units in between are compared for candidates only. All loads stay
    // within the text because i + m - 1 + 16 <= size.
    const __m128i first = _mm_set1_epi16(short(key.front()));
    const __m128i last = _mm_set1_epi16(short(key.back()));
    const auto candidates = [&](qsizetype at) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + at));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + at + m - 1));
        return _mm_and_si128(_mm_cmpeq_epi16(a, first), _mm_cmpeq_epi16(b, last));
    };
    for (; i + m - 1 + 16 <= size; i += 16) {
        // Sixteen positions per step: most steps have no candidate at all.
        const __m128i low = candidates(i), high = candidates(i + 8);
        if (!_mm_movemask_epi8(_mm_or_si128(low, high))) continue;
        // Two mask bits per unit, both set for a candidate.
        quint32 mask = quint32(_mm_movemask_epi8(low)) | (quint32(_mm_movemask_epi8(high)) << 16);
        while (mask) {
            const qsizetype at = i + qCountTrailingZeroBits(mask) / 2;
            if (m <= 2 || std::memcmp(text + at + 1, key.data() + 1, size_t(m - 2) * sizeof(char16_t)) == 0) return at;
            mask &= mask - 1;
            mask &= mask - 1;
        }
    }
#endif
    const auto at = std::u16string_view(text, size_t(size)).find(key, size_t(i));
    return at == std::u16string_view::npos ? -1 : qsizetype(at);
}

}  // namespace TextSearch
