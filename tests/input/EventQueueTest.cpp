#include "input/EventQueue.h"

#include <gtest/gtest.h>

namespace {

using gui::EventQueue;

SDL_Event Motion(int x, int dx, int state = 1) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.x = static_cast<Uint16>(x);
    event.motion.xrel = static_cast<Sint16>(dx);
    event.motion.state = static_cast<Uint8>(state);
    return event;
}

SDL_Event Button(int type) {
    SDL_Event event{};
    event.type = static_cast<Uint8>(type);
    event.button.button = SDL_BUTTON_LEFT;
    return event;
}

// A stroke of two seconds from a mouse of 1000 Hz, all in one frame.
TEST(EventQueue, AStallLosesNoPressAndNoReleaseAndNoWay) {
    EventQueue queue;
    queue.Push(Button(SDL_MOUSEBUTTONDOWN));
    constexpr int STEPS = 2000;
    for (int i = 1; i <= STEPS; ++i) queue.Push(Motion(i, 1));
    queue.Push(Button(SDL_MOUSEBUTTONUP));
    queue.Push(Button(SDL_MOUSEBUTTONDOWN));
    queue.Push(Motion(STEPS + 1, 1));
    queue.Push(Button(SDL_MOUSEBUTTONUP));

    int presses = 0, releases = 0, way = 0, previous = 0, longest = 0;
    SDL_Event event;
    const size_t count = queue.GetSize();
    while (queue.Pop(event)) {
        presses += event.type == SDL_MOUSEBUTTONDOWN;
        releases += event.type == SDL_MOUSEBUTTONUP;
        if (event.type != SDL_MOUSEMOTION) continue;
        way += event.motion.xrel;
        longest = std::max(longest, event.motion.x - previous);
        previous = event.motion.x;
    }
    EXPECT_EQ(presses, 2);
    EXPECT_EQ(releases, 2);
    EXPECT_EQ(way, STEPS + 1);
    EXPECT_LE(longest, 4) << "the stroke keeps its shape";
    EXPECT_LT(count, 800u);
}

TEST(EventQueue, MotionsWithDifferentButtonsStayApart) {
    EventQueue queue;
    for (int i = 0; i < 100; ++i) queue.Push(Motion(i, 1, i % 2));
    EXPECT_EQ(queue.GetSize(), 100u);
}

TEST(EventQueue, OnlyTheLastResizeCounts) {
    EventQueue queue;
    SDL_Event resize{};
    resize.type = SDL_VIDEORESIZE;
    for (int width = 100; width < 110; ++width) {
        resize.resize.w = width;
        queue.Push(resize);
        queue.Push(Button(SDL_MOUSEBUTTONDOWN));
    }
    EXPECT_EQ(queue.GetSize(), 11u);
    SDL_Event event{};
    while (event.type != SDL_VIDEORESIZE && queue.Pop(event)) continue;
    EXPECT_EQ(event.resize.w, 109);
}

}  // namespace
