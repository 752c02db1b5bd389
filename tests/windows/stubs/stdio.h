/* As much of it as debug.h names. */
typedef struct StubFile FILE;
