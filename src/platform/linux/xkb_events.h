/* Asks the X keyboard extension for what the core protocol does not tell. In C, for the extension's own
   header uses a word that C++ keeps for itself. */
#pragma once

#include <xcb/xcb.h>

#ifdef __cplusplus
extern "C" {
#endif

/* From now on a key that is held down comes as presses alone, and changes of the layout are told as events
   whose number is returned; -1 when the server does not have the extension. Waits for no answer. */
int murmelon_xkb_listen(xcb_connection_t* connection);

#ifdef __cplusplus
}
#endif
