// SPDX-License-Identifier: MIT
//
// The names of Dispatch that Vantora uses, in their forms for plain C; dispatch(3),
// dispatch_async(3), dispatch_source_create(3), dispatch_time(3).
#pragma once

#include <pthread/qos.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct StandInObject* dispatch_object_t;
typedef struct StandInQueue* dispatch_queue_t;
typedef struct StandInQueueAttributes* dispatch_queue_attr_t;
typedef struct StandInSource* dispatch_source_t;
typedef const struct StandInSourceType* dispatch_source_type_t;
typedef uint64_t dispatch_time_t;
typedef void (*dispatch_function_t)(void* context);

extern const struct StandInSourceType standInTimerSource;
extern const struct StandInSourceType standInReadSource;
#define DISPATCH_SOURCE_TYPE_TIMER (&standInTimerSource)
#define DISPATCH_SOURCE_TYPE_READ (&standInReadSource)
#define DISPATCH_TIME_NOW UINT64_C(0)
#define DISPATCH_TIME_FOREVER (~UINT64_C(0))
#define DISPATCH_QUEUE_SERIAL ((dispatch_queue_attr_t)0)
typedef unsigned long dispatch_autorelease_frequency_t;
#define DISPATCH_AUTORELEASE_FREQUENCY_WORK_ITEM 1ul

dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_attr_t dispatch_queue_attr_make_with_qos_class(dispatch_queue_attr_t attributes,
                                                              qos_class_t quality, int relative);
dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes);
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
void dispatch_sync_f(dispatch_queue_t queue, void* context, dispatch_function_t work);

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         unsigned long mask, dispatch_queue_t queue);
void dispatch_source_set_event_handler_f(dispatch_source_t source, dispatch_function_t handler);
void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t interval,
                               uint64_t leeway);
void dispatch_source_cancel(dispatch_source_t source);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t nanoseconds);

// Of queues and sources alike; on a Mac one function that takes either.
void standInSetContext(void* object, void* context);
void standInSetFinalizer(void* object, dispatch_function_t finalizer);
void standInActivate(void* object);
void standInRelease(void* object);
#define dispatch_set_context(object, context) standInSetContext(object, context)
#define dispatch_set_finalizer_f(object, finalizer) standInSetFinalizer(object, finalizer)
#define dispatch_activate(object) standInActivate(object)
#define dispatch_release(object) standInRelease(object)

#ifdef __cplusplus
}
#endif
