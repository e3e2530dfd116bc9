/* A program as others write it: it loads the library when it runs and knows nothing but the standard's functions. Each
 * line of its input asks for one call; each line of its output has the result, and what else the call gave.
 *
 *   clprogram LIBRARY
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { MOST_SESSIONS = 8, MOST_TEXT = 1024 };

static int (*getNumSerialPorts)(unsigned int*);
static int (*getSerialPortIdentifier)(unsigned int, char*, unsigned int*);
static int (*serialInit)(unsigned int, void**);
static int (*serialRead)(void*, char*, unsigned int*, unsigned int);
static int (*serialWrite)(void*, char*, unsigned int*, unsigned int);
static void (*serialClose)(void*);
static int (*getNumBytesAvail)(void*, unsigned int*);
static int (*flushPort)(void*);
static int (*getSupportedBaudRates)(void*, unsigned int*);
static int (*setBaudRate)(void*, unsigned int);
static int (*getManufacturerInfo)(char*, unsigned int*, unsigned int*);
static int (*getErrorText)(int, char*, unsigned int*);

static void* sessions[MOST_SESSIONS];

static void load(void* library, const char* name, void* function) {
  void* const found = dlsym(library, name);
  if (found == NULL) {
    fprintf(stderr, "%s is missing: %s\n", name, dlerror());
    exit(2);
  }
  memcpy(function, &found, sizeof found);
}

static void loadAll(void* library) {
  load(library, "clGetNumSerialPorts", &getNumSerialPorts);
  load(library, "clGetSerialPortIdentifier", &getSerialPortIdentifier);
  load(library, "clSerialInit", &serialInit);
  load(library, "clSerialRead", &serialRead);
  load(library, "clSerialWrite", &serialWrite);
  load(library, "clSerialClose", &serialClose);
  load(library, "clGetNumBytesAvail", &getNumBytesAvail);
  load(library, "clFlushPort", &flushPort);
  load(library, "clGetSupportedBaudRates", &getSupportedBaudRates);
  load(library, "clSetBaudRate", &setBaudRate);
  load(library, "clGetManufacturerInfo", &getManufacturerInfo);
  load(library, "clGetErrorText", &getErrorText);
}

/* The bytes of the line count up, in a way in which a shift shows. */
static char byteAt(unsigned int index) {
  return (char)(index * 7 + index / 251);
}

static void answerText(int result, const char* text, unsigned int size) {
  printf("%d %u %s\n", result, size, text);
}

static void askTexts(const char* command, int number, unsigned int size) {
  char text[MOST_TEXT] = "untouched";
  char* const buffer = size == 0 ? NULL : text;
  unsigned int version = 0;
  int result;
  if (strcmp(command, "identifier") == 0) {
    result = getSerialPortIdentifier((unsigned int)number, buffer, &size);
  } else if (strcmp(command, "text") == 0) {
    result = getErrorText(number, buffer, &size);
  } else {
    result = getManufacturerInfo(buffer, &size, &version);
    printf("%u ", version);
  }
  answerText(result, text, size);
}

static void askRead(void* session, unsigned int size, unsigned int timeout) {
  const unsigned int wanted = size;
  char* const buffer = malloc(wanted + 1);
  unsigned int wrong = 0, touched = 0, i;
  memset(buffer, 0x55, wanted + 1);
  const int result = serialRead(session, buffer, &size, timeout);
  for (i = 0; i < wanted; ++i) {
    wrong += buffer[i] != byteAt(i);
    touched += buffer[i] != 0x55;
  }
  printf("%d %u %s\n", result, size, wrong == 0 ? "right" : touched == 0 ? "untouched" : "wrong");
  free(buffer);
}

static void askWrite(void* session, unsigned int size, unsigned int timeout) {
  char* const buffer = malloc(size + 1);
  unsigned int i;
  for (i = 0; i < size; ++i)
    buffer[i] = byteAt(i);
  const int result = serialWrite(session, buffer, &size, timeout);
  printf("%d %u\n", result, size);
  free(buffer);
}

static void askNulls(void* session) {
  char text[MOST_TEXT];
  unsigned int number = sizeof text;
  printf("%d ", getNumSerialPorts(NULL));
  printf("%d ", getSerialPortIdentifier(0, text, NULL));
  printf("%d ", serialInit(0, NULL));
  printf("%d ", serialRead(session, NULL, &number, 0));
  printf("%d ", serialRead(session, text, NULL, 0));
  printf("%d ", serialWrite(session, NULL, &number, 0));
  printf("%d ", serialWrite(session, text, NULL, 0));
  printf("%d ", getNumBytesAvail(session, NULL));
  printf("%d ", getSupportedBaudRates(session, NULL));
  printf("%d ", getManufacturerInfo(text, NULL, &number));
  printf("%d ", getManufacturerInfo(text, &number, NULL));
  printf("%d\n", getErrorText(0, text, NULL));
}

/* Every call with a session, with one that is none. */
static void askWithout(void* session) {
  char byte = 0;
  unsigned int number = 1;
  printf("%d ", serialRead(session, &byte, &number, 0));
  printf("%d ", serialWrite(session, &byte, &number, 0));
  printf("%d ", getNumBytesAvail(session, &number));
  printf("%d ", flushPort(session));
  printf("%d ", getSupportedBaudRates(session, &number));
  printf("%d\n", setBaudRate(session, 1));
  serialClose(session);
}

static int ask(const char* command, unsigned int slot, unsigned int first, unsigned int second) {
  void* const session = slot < MOST_SESSIONS ? sessions[slot] : (void*)&sessions;
  unsigned int number = 0;
  int result = 0;
  if (strcmp(command, "count") == 0)
    result = getNumSerialPorts(&number);
  else if (strcmp(command, "init") == 0)
    result = serialInit(first, &sessions[slot]);
  else if (strcmp(command, "close") == 0)
    serialClose(session);
  else if (strcmp(command, "available") == 0)
    result = getNumBytesAvail(session, &number);
  else if (strcmp(command, "flush") == 0)
    result = flushPort(session);
  else if (strcmp(command, "speeds") == 0)
    result = getSupportedBaudRates(session, &number);
  else if (strcmp(command, "speed") == 0)
    result = setBaudRate(session, first);
  else if (strcmp(command, "read") == 0)
    return askRead(session, first, second), 1;
  else if (strcmp(command, "write") == 0)
    return askWrite(session, first, second), 1;
  else if (strcmp(command, "nulls") == 0)
    return askNulls(session), 1;
  else if (strcmp(command, "without") == 0)
    return askWithout(session), 1;
  else
    return 0;
  printf("%d %u\n", result, number);
  return 1;
}

int main(int count, char** arguments) {
  void* const library = count == 2 ? dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) : NULL;
  char line[256];
  if (library == NULL) {
    fprintf(stderr, "The library cannot be loaded: %s\n", count == 2 ? dlerror() : "it was not named");
    return 2;
  }
  loadAll(library);
  while (fgets(line, sizeof line, stdin) != NULL) {
    char command[32] = "";
    int slot = 0;
    unsigned int first = 0, second = 0;
    if (sscanf(line, "%31s %d %u %u", command, &slot, &first, &second) < 1)
      return 2;
    if (strcmp(command, "identifier") == 0 || strcmp(command, "text") == 0 || strcmp(command, "maker") == 0)
      askTexts(command, slot, first);
    else if (!ask(command, (unsigned int)slot, first, second))
      return 2;
    fflush(stdout);
  }
  return dlclose(library);
}
