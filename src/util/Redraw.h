#pragma once

namespace util {

// Whether the picture on the screen is out of date: who changes what is seen asks for another, and the frame
// loop draws only then, and now and then all the same.
class Redraw {
  public:
    static void Request() { s_requested = true; }
    static bool Take();  // whether there was a request since the last call

  private:
    static bool s_requested;
};

}  // namespace util
