#ifndef ZARVIK_ORVELLA_H
#define ZARVIK_ORVELLA_H

/*
 * The public C interface of Zarvik Orvella: web views for a game engine.
 *
 * Every function but those of cookies returns at once. Work on a web view happens on the app's UI thread in
 * the order of the calls, and its outcome comes back through the registered callbacks. The callbacks are
 * called on whichever thread has something to report.
 */

#include <stdint.h>

#if defined(_WIN32)
#define ZARVIK_API __declspec(dllexport)
#else
#define ZARVIK_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
class UwpWebView;
extern "C" {
#else
typedef struct UwpWebView UwpWebView;
#endif

/* The engine's interface registry, handed over when the engine loads the library. */
typedef struct IUnityInterfaces IUnityInterfaces;

/* One byte; zero means false, anything else true. */
typedef uint8_t ZarvikBool;

/* Receives one host message. The texts are UTF-8 and valid only during the call. */
typedef void (*ZarvikSendMessageFunction)(const char* messageTargetName, const char* methodName,
                                          const char* payload);

/* Receives the bytes of one screenshot or raw-pixel request. They are valid only during the call. */
typedef void (*ZarvikDataResultCallback)(const char* messageTargetName, const char* resultCallbackId,
                                         const uint8_t* bytes, int32_t length);

/* Receives one log line, UTF-8, valid only during the call. */
typedef void (*ZarvikLogFunction)(const char* line);

/* Called by the engine's render thread with the key of a deposited web view. */
typedef void (*ZarvikRenderFunction)(int eventId);

#define ZARVIK_EXPORT(result, name, parameters) ZARVIK_API result name parameters;
#include "ExportTable.inc"
#undef ZARVIK_EXPORT

#ifdef __cplusplus
}
#endif

#endif
