/*
 * The C interface of Velora TS logging, for hosts in C and in every language that can call C.
 *
 * It is a shared library of its own, velora_ts, in front of the component VeloraTsLogging, which it calls as any host
 * does. It adds no thread and keeps nothing between two calls but handles and, for each thread, the text of its last
 * error. docs/c.md is an introduction with a whole host.
 *
 * Texts are bytes, meant as UTF-8, and are passed on unchanged. A text is a pointer and the number of its bytes, so a
 * zero byte passes. VELORA_TS_ZERO_TERMINATED as the number means that the text ends at its first zero byte. A null
 * pointer with the number 0 is the empty text; with another number it is a misuse, except where "may be null" stands.
 * Texts are copied during the call: the caller keeps its memory.
 *
 * Every function that can fail returns a velora_ts_status. If it is not VELORA_TS_OK, velora_ts_last_error() tells
 * which function failed and why. No exception leaves a function, and no function ends the process.
 *
 * Handles are made by the velora_ts_create_... functions and given back with velora_ts_close_.... A closed handle, a
 * handle of another kind, and null where a handle is expected are misuses; a value is never used for a second handle.
 *
 * All functions can be called on any thread, and from several at once. One lock for the process lets in one thread at a
 * time, as the component expects; only velora_ts_last_error, velora_ts_raise and the two version functions do not take
 * it. It does not bind C++ parts of the process that call the component themselves. A callback runs on the thread of
 * the function that caused it, while the lock is held: it may call any function here, but must not wait for another
 * thread that calls one. A thread is not cancelled inside a function. When the process ends, a call on another thread
 * waits for its end.
 *
 * A process can fork at any time. In the child, every function but velora_ts_last_error, velora_ts_raise and the two
 * version functions is a misuse if, before the fork, a session was begun without a gateway of the host, or a call was
 * running on any thread: what a session has open serves its own process alone. Such a child leaves by exec or _exit;
 * one that was forked by a callback must not return from it. A child that was forked before that begins a session of
 * its own.
 */
#ifndef VELORA_TS_H
#define VELORA_TS_H

#include <stddef.h>
#include <stdint.h>

/* The build of the library defines VELORA_TS_BUILD. A host defines nothing. */
#if defined(_WIN32) && defined(VELORA_TS_BUILD)
#define VELORA_TS_API __declspec(dllexport)
#elif defined(_WIN32)
#define VELORA_TS_API __declspec(dllimport)
#else
#define VELORA_TS_API __attribute__((visibility("default")))
#endif

/* The calling convention of all functions and callbacks. */
#if defined(_WIN32)
#define VELORA_TS_CALL __cdecl
#else
#define VELORA_TS_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Versions ---- */

/* The version of this interface. It grows when something is added. What is there stays as it is. */
#define VELORA_TS_INTERFACE_VERSION 1

/* Returns the VELORA_TS_INTERFACE_VERSION of the loaded library. A host can use what its header declares if this number
 * is not lower than its own. */
VELORA_TS_API int32_t VELORA_TS_CALL velora_ts_interface_version(void);

/* Returns the version of the loaded library, such as "0.1.0". The text belongs to the library. */
VELORA_TS_API const char* VELORA_TS_CALL velora_ts_version(void);

/* ---- Texts, statuses and errors ---- */

/* As the number of bytes of a text: the text ends at its first zero byte. */
#define VELORA_TS_ZERO_TERMINATED SIZE_MAX

/* A text in a structure. */
typedef struct velora_ts_text {
  const char* data; /* may be null if size is 0 */
  size_t size;      /* in bytes */
} velora_ts_text;

/* The outcome of a function: one of the constants below. */
typedef int32_t velora_ts_status;

enum {
  VELORA_TS_OK = 0,            /* done */
  VELORA_TS_MISUSE = 1,        /* the arguments cannot be used; nothing was done */
  VELORA_TS_RAISED = 2,        /* TS, the file system, the instrument or a callback raised an error */
  VELORA_TS_NO_MEMORY = 3,     /* there was no memory */
  VELORA_TS_NOT_AVAILABLE = 4, /* TS cannot be used: only of velora_ts_available */
  VELORA_TS_TOO_LONG = 5,      /* done, but the result is longer than the buffer of the caller */
  VELORA_TS_NOT_SUPPORTED = 6  /* a vendor's library, in the place of ours, does not have it */
};

/* Returns the text of the last error of this thread: the name of the function, ": ", and why it failed, in the words of
 * what raised. Empty if none failed yet. A function that succeeds leaves it as it is.
 * size: receives the number of bytes; may be null. The text also ends with a zero byte.
 * The text belongs to the library and is valid until the next failure on this thread, or until the thread ends. */
VELORA_TS_API const char* VELORA_TS_CALL velora_ts_last_error(size_t* size);

/* ---- Whether a host would record ---- */

/* Tries, step by step, what velora_ts_create_logging needs, takes it back, and says whether a host would record: the
 * service, the two settings files in the current directory or in the folder of the library, the configuration, and the
 * database. No store is made or upgraded. A host that must not run without a record asks this first. Once a gateway of
 * the host is in place, its two answers count instead. If is_connectable fails, its text is the reason; if is_present
 * fails, so does this function, as velora_ts_create_logging does then.
 * configuration, activities: the names that velora_ts_create_logging will get; a null activities is "activities.xml".
 * Returns VELORA_TS_OK, or VELORA_TS_NOT_AVAILABLE; velora_ts_last_error() then has the findings that
 * "velora-ts check" has, a line for each. Over a vendor's TSAL, the answer has no reason. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_available(const char* configuration, size_t configuration_size,
                                                                  const char* activities, size_t activities_size);

/* ---- The logging object ---- */

typedef struct velora_ts_logging velora_ts_logging;

/* The least capacity of a buffer for a guid: its 36 characters, a zero byte, and some to spare. */
#define VELORA_TS_GUID_CAPACITY 40

/* Starts a session with TS and returns the logging object of the process. Every call repeats the whole bring-up, and
 * makes a new handle. Beginning a session forgets all pending events. IFactory.h says more of CreateTsLogging.
 * configuration: the name of the instrument configuration file.
 * activities: the name of the activities file; null for "activities.xml".
 * logging: receives the handle, also while TS cannot be used: its operations then record nothing. Null if a gateway of
 * the host removed the object while it was made, and after an error.
 * VELORA_TS_RAISED: the bring-up failed. The steps before the failure are not undone; a later call repeats all. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_create_logging(const char* configuration,
                                                                       size_t configuration_size,
                                                                       const char* activities, size_t activities_size,
                                                                       velora_ts_logging** logging);

/* Gives a handle back. The session stays open, and what was recorded stays. Null is accepted. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_close_logging(velora_ts_logging* logging);

/* Creates an execution of a registered activity version, under the process-wide parent if one was set.
 * version: the name of the activity version. If it is not registered, the execution has no version.
 * node: where the execution runs, in the terms of the host. description: free text.
 * guid: a buffer of at least VELORA_TS_GUID_CAPACITY bytes, which receives the guid and a zero byte. Only this guid can
 * mark the execution as done. Empty when TS cannot be used.
 * guid_size: receives the number of bytes of the guid; may be null.
 * VELORA_TS_RAISED: nothing was created, except if a logger of the host failed at a line after the save: the execution
 * is then recorded all the same. VELORA_TS_TOO_LONG: the execution was created, but its guid is longer than the buffer;
 * the text of the error has it whole. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_create_execution(
    velora_ts_logging* logging, const char* version, size_t version_size, const char* node, size_t node_size,
    const char* description, size_t description_size, char* guid, size_t guid_capacity, size_t* guid_size);

/* Creates an execution as velora_ts_create_execution does, as a child of another one.
 * parent: the guid of the parent, as a creation returned it. If it is empty, nothing is created, and guid is empty. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_create_execution_under(
    velora_ts_logging* logging, const char* parent, size_t parent_size, const char* version, size_t version_size,
    const char* node, size_t node_size, const char* description, size_t description_size, char* guid,
    size_t guid_capacity, size_t* guid_size);

/* Marks an execution as done, with the current time. Can be repeated.
 * guid: the guid of the execution. If it is empty, nothing is saved. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_update_execution(velora_ts_logging* logging, const char* guid,
                                                                         size_t guid_size);

/* Creates a pending event in memory. It replaces a pending event of the same name, with its parameters. It stays until
 * it is created again or the next session begins, saved or not.
 * name: what happened. The functions below find the event by this name, compared byte by byte. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_create_event(velora_ts_logging* logging, const char* name,
                                                                     size_t name_size);

/* Saves a pending event with all its parameters. It stays pending.
 * name: the name of the event. If there is no such event, an event without a name is saved.
 * guid: the execution that the event belongs to; empty for none. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_save_event(velora_ts_logging* logging, const char* name,
                                                                   size_t name_size, const char* guid,
                                                                   size_t guid_size);

/* Add a parameter at the end of a pending event.
 * event: the name of the event. If there is no such event, an event without a name is created under this name.
 * parameter: the name of the parameter. The same name may be used more than once.
 * value: the value, stored exactly. A truth value is 0 for false and any other number for true. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_add_bool(velora_ts_logging* logging, const char* event,
                                                                 size_t event_size, const char* parameter,
                                                                 size_t parameter_size, int32_t value);
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_add_double(velora_ts_logging* logging, const char* event,
                                                                   size_t event_size, const char* parameter,
                                                                   size_t parameter_size, double value);
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_add_int(velora_ts_logging* logging, const char* event,
                                                                size_t event_size, const char* parameter,
                                                                size_t parameter_size, int32_t value);
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_add_text(velora_ts_logging* logging, const char* event,
                                                                 size_t event_size, const char* parameter,
                                                                 size_t parameter_size, const char* value,
                                                                 size_t value_size);

/* ---- The configurator ---- */

typedef struct velora_ts_configurator velora_ts_configurator;

/* Makes a configurator. All configurators behave the same; the parent belongs to the process.
 * configurator: receives the handle; null after an error. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_create_configurator(velora_ts_configurator** configurator);

/* Gives a handle back. The parent stays. Null is accepted. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_close_configurator(velora_ts_configurator* configurator);

/* Begins a new session, registers the activities, and creates the process-wide parent: an execution of "AutoFunction"
 * that is done. Executions that are created without a parent become its children, until the next call. All pending
 * events are forgotten. ITsLoggingConfigurator.h says more of SetParentActivityExec.
 * node: the node of the parent. text1, text2, text3: texts that TS gets with the session if the settings are in the
 * folder of the library.
 * activities: the name of the activities file; null for "activities.xml".
 * guid, guid_capacity, guid_size: receive the guid of the parent, as for velora_ts_create_execution. When TS cannot be
 * used, the guid of the parent that was set before, or empty.
 * VELORA_TS_RAISED: the parent that was set before stays. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_set_parent(
    velora_ts_configurator* configurator, const char* node, size_t node_size, const char* text1, size_t text1_size,
    const char* text2, size_t text2_size, const char* text3, size_t text3_size, const char* activities,
    size_t activities_size, char* guid, size_t guid_capacity, size_t* guid_size);

/* ---- Callbacks of the host ---- */

/* A callback returns VELORA_TS_OK, or fails:
 *   return velora_ts_raise("the disk is full", VELORA_TS_ZERO_TERMINATED);
 * The failure then goes through the component as an exception of TS would, and comes back from the function that the
 * host called, as VELORA_TS_RAISED with this text. A callback that fails without a reason is named in the error, with
 * the last error of a function here that failed while it ran. A callback must not be left by an exception of its own
 * language (one of C++ that is derived from std::exception is treated like velora_ts_raise), not by longjmp, and not by
 * the end of its thread.
 *
 * What a callback gets is valid until it returns. Its texts end with a zero byte, which their size does not count.
 *
 * The tables of callbacks below are copied. Their release is called once: after the table was replaced, when the last
 * call in it has returned and no handle keeps its object. A host that unloads the code of its callbacks, or ends the
 * runtime of its language, replaces its tables by null before. When the process ends, from the moment at which exit()
 * comes to this library, no callback is called any more: what is in place then is not released. From the first table
 * on, velora_ts stays loaded until then, so whoever still holds an object of the host never calls into freed code.
 *
 * text: the reason. Returns VELORA_TS_RAISED. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_raise(const char* text, size_t size);

/* Where a callback puts its result. Valid until the callback returns. A callback that returns VELORA_TS_OK without a
 * result answers with an empty one. Each callback below names the function that it answers with; another one is a
 * misuse. */
typedef struct velora_ts_answer velora_ts_answer;

/* Answers with a text, which is copied. An answer that was given before is replaced. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_answer_text(velora_ts_answer* answer, const char* text,
                                                                    size_t size);

/* An activity version. */
typedef struct velora_ts_version_of_activity {
  velora_ts_text guid; /* empty means no version */
  velora_ts_text name;
  velora_ts_text version;
  velora_ts_text description;
} velora_ts_version_of_activity;

/* Adds an activity version to the answer of register_activities. A second one of the same name is a misuse. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_answer_version(velora_ts_answer* answer,
                                                                       const velora_ts_version_of_activity* version);

/* As a time: it is not stated, and the record is stored with the time at which it is saved. */
#define VELORA_TS_NO_TIME INT64_MIN

/* An execution. */
typedef struct velora_ts_execution {
  velora_ts_text guid;   /* empty if the execution is new */
  velora_ts_text parent; /* the guid of the parent; empty if none is stated */
  velora_ts_version_of_activity version;
  velora_ts_text node;
  velora_ts_text description;
  int32_t kind;   /* a number of TS; 5 at the top */
  int32_t status; /* 4 running, 14 done */
  int64_t time;   /* since when it has this status: microseconds since 1970-01-01T00:00:00 UTC, or VELORA_TS_NO_TIME */
} velora_ts_execution;

/* Answers with an execution, which is copied; its parent is not looked at. An earlier answer is replaced. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_answer_execution(velora_ts_answer* answer,
                                                                         const velora_ts_execution* execution);

/* The kinds of parameters. */
enum { VELORA_TS_BOOL = 0, VELORA_TS_DOUBLE = 1, VELORA_TS_INT = 2, VELORA_TS_TEXT = 3 };

/* A parameter of an event. The member that belongs to its kind counts; the others are 0. */
typedef struct velora_ts_parameter {
  velora_ts_text name;
  velora_ts_text text; /* VELORA_TS_TEXT */
  double real;         /* VELORA_TS_DOUBLE */
  int32_t kind;
  int32_t integer; /* VELORA_TS_INT; 0 or 1 for VELORA_TS_BOOL */
} velora_ts_parameter;

/* An instrument event. */
typedef struct velora_ts_event {
  velora_ts_text name;
  int64_t time; /* when it happened, as in velora_ts_execution */
  const velora_ts_parameter* parameters;
  size_t parameter_count;
} velora_ts_event;

/* An instrument configuration; ITolvaServicesClass.h says what each text is. */
typedef struct velora_ts_configuration {
  velora_ts_text configuration;
  velora_ts_text text2;
  velora_ts_text vendor;
  velora_ts_text host;
  velora_ts_text options;
  velora_ts_text instrument_class;
  velora_ts_text model;
} velora_ts_configuration;

/* A gateway of the host: the component makes every call to TS through it, so a simulation or a test of a host needs no
 * TS. All callbacks but release are needed. ITolvaServicesClass.h says when each is called. */
typedef struct velora_ts_gateway {
  size_t size;   /* sizeof(velora_ts_gateway) */
  void* context; /* what the callbacks get as their first argument */

  /* The gateway is not used any more; may be null. */
  void(VELORA_TS_CALL* release)(void* context);

  /* A session begins. texts: three texts of the host, or null where it gave none. */
  velora_ts_status(VELORA_TS_CALL* begin_session)(void* context, const velora_ts_text* texts);
  /* The folder of the settings file; empty means the current directory. */
  velora_ts_status(VELORA_TS_CALL* set_path)(void* context, const char* path, size_t path_size);
  /* Whether the service is there, and whether the server can be reached. answer: set it to 0 or 1; it is 0. If
   * is_connectable fails, the component takes this for 0. */
  velora_ts_status(VELORA_TS_CALL* is_present)(void* context, int32_t* answer);
  velora_ts_status(VELORA_TS_CALL* is_connectable)(void* context, int32_t* answer);
  /* Answers with velora_ts_answer_version for each activity version of the file. */
  velora_ts_status(VELORA_TS_CALL* register_activities)(void* context, const char* path, size_t path_size,
                                                        velora_ts_answer* answer);
  /* Stores a new or a known execution. Answers a new one with velora_ts_answer_text: its guid, of less than
   * VELORA_TS_GUID_CAPACITY bytes (a longer one is a misuse). Without an answer, a known one keeps its guid. */
  velora_ts_status(VELORA_TS_CALL* save_execution)(void* context, const velora_ts_execution* execution,
                                                   velora_ts_answer* answer);
  /* Answers with velora_ts_answer_execution, or fails if no execution has this guid. for_link: 1 if the execution
   * becomes the parent of another one, 0 if it is saved again. */
  velora_ts_status(VELORA_TS_CALL* get_execution)(void* context, const char* guid, size_t guid_size, int32_t for_link,
                                                  velora_ts_answer* answer);
  /* Answers with velora_ts_answer_text: the whole content of the file. */
  velora_ts_status(VELORA_TS_CALL* read_file)(void* context, const char* path, size_t path_size,
                                              velora_ts_answer* answer);
  /* Stores an event. configuration: the guid of the configuration that was stored last; empty if none was.
   * execution: the guid of the execution that the event belongs to; null for none. */
  velora_ts_status(VELORA_TS_CALL* save_event)(void* context, const velora_ts_event* event, const char* configuration,
                                               size_t configuration_size, const char* execution, size_t execution_size);
  /* Stores the instrument configuration. Answers with velora_ts_answer_text: its guid. */
  velora_ts_status(VELORA_TS_CALL* save_configuration)(void* context, const velora_ts_configuration* configuration,
                                                       velora_ts_answer* answer);
} velora_ts_gateway;

/* Replaces the gateway to TS by one of the host, from the next call to TS on.
 * gateway: the callbacks, which are copied; null for a new gateway of the component.
 * VELORA_TS_MISUSE: size is unknown or a callback is missing; nothing has changed, and release is not called. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_set_gateway(const velora_ts_gateway* gateway);

/* A logging object of the host: velora_ts_create_logging then returns it, to every part of the process. All callbacks
 * but release are needed; each gets what the function of its name gets. */
typedef struct velora_ts_own_logging {
  size_t size;   /* sizeof(velora_ts_own_logging) */
  void* context; /* what the callbacks get as their first argument */

  /* The object is not used any more; may be null. */
  void(VELORA_TS_CALL* release)(void* context);

  /* Answers with velora_ts_answer_text: the guid. parent: null where the host stated none. */
  velora_ts_status(VELORA_TS_CALL* create_execution)(void* context, const char* parent, size_t parent_size,
                                                     const char* version, size_t version_size, const char* node,
                                                     size_t node_size, const char* description, size_t description_size,
                                                     velora_ts_answer* answer);
  velora_ts_status(VELORA_TS_CALL* update_execution)(void* context, const char* guid, size_t guid_size);
  velora_ts_status(VELORA_TS_CALL* create_event)(void* context, const char* name, size_t name_size);
  velora_ts_status(VELORA_TS_CALL* save_event)(void* context, const char* name, size_t name_size, const char* guid,
                                               size_t guid_size);
  velora_ts_status(VELORA_TS_CALL* add_parameter)(void* context, const char* event, size_t event_size,
                                                  const velora_ts_parameter* parameter);
} velora_ts_own_logging;

/* Replaces the logging object of the process by one of the host.
 * logging: the callbacks, which are copied; null for a new object of the component at the next
 * velora_ts_create_logging. Handles that are open keep their object.
 * VELORA_TS_MISUSE: size is unknown or a callback is missing; nothing has changed, and release is not called. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_set_logging(const velora_ts_own_logging* logging);

/* The levels of log lines. */
enum { VELORA_TS_INFO = 0, VELORA_TS_WARNING = 1, VELORA_TS_ERROR = 2 };

/* A logger of the host, which gets every line that the component would write to standard error or VELORA_LOG_FILE. */
typedef struct velora_ts_logger {
  size_t size;   /* sizeof(velora_ts_logger) */
  void* context; /* what the callbacks get as their first argument */

  /* Lines below this level are left out, without a call of write. For each call, the component writes about three lines
   * of VELORA_TS_INFO. */
  int32_t least_level;

  /* The logger is not used any more; may be null. Can be called on the thread of any line. */
  void(VELORA_TS_CALL* release)(void* context);

  /* Writes a line. level: one of the levels above. source: the program or library that writes. If it fails, so does the
   * operation that writes the line, also after its save: what was saved stays recorded, and a repeated call records it
   * again. So a logger rather deals with its own errors. C++ parts of the process can call it on several threads at
   * once. */
  velora_ts_status(VELORA_TS_CALL* write)(void* context, int32_t level, const char* source, size_t source_size,
                                          const char* message, size_t message_size);
} velora_ts_logger;

/* Replaces the logger of the process by one of the host.
 * logger: the callbacks, which are copied; null for the default logger.
 * VELORA_TS_MISUSE: size or least_level is unknown, or write is missing. VELORA_TS_NOT_SUPPORTED: the library
 * VeloraInfraLogging is a vendor's; it logs in its own way. Nothing has changed then, and release is not called. */
VELORA_TS_API velora_ts_status VELORA_TS_CALL velora_ts_set_logger(const velora_ts_logger* logger);

#ifdef __cplusplus
}
#endif

#endif
