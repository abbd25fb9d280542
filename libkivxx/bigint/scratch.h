// Words for the time of one call: on the stack if they are few.

#ifndef KIV_BIGINT_SCRATCH_H
#define KIV_BIGINT_SCRATCH_H

#include <memory>

#include "bigint/words.h"

namespace kiv::words {

class Scratch {
public:
    // Of undefined content.
    explicit Scratch(unsigned words)
        : m_block(words > LOCAL ? new Word[words] : nullptr),
          m_words(words > LOCAL ? m_block.get() : m_local)
    {
    }

    Word* get() noexcept { return m_words; }

private:
    static constexpr unsigned LOCAL = 200;

    std::unique_ptr<Word[]> m_block;
    Word* m_words;
    Word m_local[LOCAL];
};

}  // namespace kiv::words

#endif
