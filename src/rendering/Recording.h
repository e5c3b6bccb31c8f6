#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <vector>

namespace rendering {

// What a piece of drawing does, written down: calls and vertices, colours, matrices, textures. Where two
// takes are equal, so are the pixels, and who draws need not know or say when he has changed.
//
// The fixed-function drawing of this unit reports itself. What else there may be (programs, other targets, no
// blending) makes a take unlike all others. The kind of blending is not written down: the interface has one.
class Recording {
  public:
    enum Effect { Draws, OnlyRecords };  // whether what is recorded reaches GL

    // One more take; whether it is equal to the one before. Takes do not nest.
    bool Take(Effect effect, const std::function<void()>& draw);

    static bool IsUnderWay() { return s_present != nullptr; }

    // ---- for who draws; outside of a take they do nothing

    struct Bytes {
        const void* m_data;
        size_t m_size;
    };
    // Before a call to GL with `mode`, the present colour and these arrays. Whether it is to be made.
    static bool Note(unsigned int mode, std::initializer_list<Bytes> arrays);
    static void NoteTexture(int unit, uint64_t serial);  // 0 for none
    static void NoteUnknown();

  private:
    class Scope;

    void Add(const void* data, size_t size);
    template <class T>
    void AddValue(const T& value) {
        Add(&value, sizeof(value));
    }
    void AddFrame();
    void AddState();

    std::vector<unsigned char> m_bytes;  // of the last take
    size_t m_place = 0;                  // up to which the present take has come
    bool m_isSame = false;               // up to there
    Effect m_effect = Draws;

    static Recording* s_present;  // null outside of takes
};

}  // namespace rendering
