#pragma once

// The one way to OpenGL's declarations: GLEW must come before everything that may include <GL/gl.h>.
#include <GL/glew.h>
#include <GL/glu.h>
