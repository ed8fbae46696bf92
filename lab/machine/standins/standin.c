/* SPDX-License-Identifier: MIT */
/* What stands for every program that the machine has a stand-in of: writes the call down, then does
 * as scripted (standin_control.py), or else as usual: plays the program of that name, runs the real
 * one, or succeeds in silence. No Python, because the daemon runs a dozen of these for each
 * connection. */
#define _GNU_SOURCE
#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#define CALLS "/run/lab/calls.jsonl"
#define SCRIPTS "/run/lab/standins/"
#define PLAYED "/mnt/lab/lib/programs/"

enum
{
    NOT_FOUND = 127,
    AS_USUAL = -1,
    PATH_ROOM = 4096
};

struct script
{
    double sleep; /* seconds */
    int status, really_run; /* or AS_USUAL */
    int if_installed;
    size_t output_length, error_length;
};

static bool is_one_of(const char *word, const char *const *words)
{
    for (; *words; words++)
        if (strcmp(word, *words) == 0)
            return true;
    return false;
}

static void put_text(FILE *line, const char *text)
{
    putc('"', line);
    for (; *text; text++) {
        if ((unsigned char)*text < ' ') {
            fprintf(line, "\\u%04x", (unsigned char)*text);
            continue;
        }
        if (*text == '"' || *text == '\\')
            putc('\\', line);
        putc(*text, line);
    }
    putc('"', line);
}

static void put_arguments(FILE *line, char **arguments)
{
    fputs(", \"argv\": [", line);
    for (char **word = arguments; *word; word++) {
        fputs(word == arguments ? "" : ", ", line);
        put_text(line, *word);
    }
    putc(']', line);
}

static void put_environment(FILE *line)
{
    const char *between = "";

    fputs(", \"env\": {", line);
    for (char **entry = environ; *entry; entry++) {
        char *equals = strchr(*entry, '=');
        if (!equals)
            continue;
        char *name = strndup(*entry, (size_t)(equals - *entry));
        fputs(between, line);
        put_text(line, name);
        fputs(": ", line);
        put_text(line, equals + 1);
        between = ", ";
        free(name);
    }
    putc('}', line);
}

/* The descriptors that the caller left open, and what each leads to. */
static void put_descriptors(FILE *line)
{
    const char *between = "";
    DIR *folder = opendir("/proc/self/fd");

    fputs(", \"fds\": {", line);
    for (struct dirent *entry; folder && (entry = readdir(folder));) {
        char target[PATH_ROOM];
        ssize_t length = readlinkat(dirfd(folder), entry->d_name, target, sizeof target - 1);
        if (length < 0 || atoi(entry->d_name) == dirfd(folder))
            continue;
        target[length] = 0;
        fputs(between, line);
        put_text(line, entry->d_name);
        fputs(": ", line);
        put_text(line, target);
        between = ", ";
    }
    putc('}', line);
    if (folder)
        closedir(folder);
}

/* One line for this call, in one write, so that calls at the same time do not mix. */
static void record(const char *program, char **arguments)
{
    char *text = NULL;
    size_t length = 0;
    FILE *line = open_memstream(&text, &length);
    struct timespec now;

    clock_gettime(CLOCK_MONOTONIC, &now);
    fprintf(line,
        "{\"time\": %lld.%09ld, \"pid\": %d, \"ppid\": %d, \"program\": ", (long long)now.tv_sec,
        now.tv_nsec, (int)getpid(), (int)getppid());
    put_text(line, program);
    put_arguments(line, arguments);
    put_environment(line);
    put_descriptors(line);
    fputs("}\n", line);
    fclose(line);

    int calls = open(CALLS, O_WRONLY | O_APPEND | O_CREAT, 0666);
    if (calls < 0 || write(calls, text, length) != (ssize_t)length)
        perror(CALLS);
    close(calls);
    free(text);
}

/* Passes bytes of the script on; a reader that has gone away is no reason to stop. */
static void say(int descriptor, FILE *file, size_t length)
{
    char part[PATH_ROOM];
    bool heard = true;

    signal(SIGPIPE, SIG_IGN);
    while (length > 0) {
        size_t got = fread(part, 1, length < sizeof part ? length : sizeof part, file);
        if (got == 0)
            break;
        length -= got;
        for (size_t said = 0; heard && said < got;) {
            ssize_t count = write(descriptor, part + said, got - said);
            heard = count >= 0;
            said += heard ? (size_t)count : 0;
        }
    }
    signal(SIGPIPE, SIG_DFL);
}

static int run_real(const char *program, char **argv)
{
    static const char *const folders[]
        = {"/usr/local/bin", "/usr/sbin", "/usr/bin", "/sbin", "/bin", NULL};
    char path[PATH_ROOM];

    for (const char *const *folder = folders; *folder; folder++) {
        snprintf(path, sizeof path, "%s/%s", *folder, program);
        execv(path, argv);
    }
    fprintf(stderr, "%s: the real program is not installed\n", program);
    return NOT_FOUND;
}

/* 0 when the module named is installed in the machine's own module folder, else 1: as loading it
 * would end if its kernel were running. */
static int status_if_installed(int count, char **argv)
{
    int status = 1;
    pid_t asked = fork();

    if (asked == 0) {
        char **asking = calloc((size_t)count + 2, sizeof *asking);
        int nowhere = open("/dev/null", O_RDWR);
        asking[0] = argv[0];
        asking[1] = "--show-depends";
        memcpy(asking + 2, argv + 1, (size_t)count * sizeof *argv); /* the closing zero, too */
        for (int descriptor = 0; descriptor <= 2; descriptor++)
            dup2(nowhere, descriptor);
        execv("/usr/sbin/modprobe", asking);
        _exit(NOT_FOUND);
    }
    waitpid(asked, &status, 0);
    return status ? 1 : 0;
}

static bool is_scripted(const char *program, struct script *script, FILE **file)
{
    char path[PATH_ROOM];

    snprintf(path, sizeof path, SCRIPTS "%s", program);
    *file = fopen(path, "re");
    return *file
        && fscanf(*file, "%lf %d %d %d %zu %zu", &script->sleep, &script->status,
               &script->really_run, &script->if_installed, &script->output_length,
               &script->error_length)
        == 6
        && fgetc(*file) == '\n';
}

int main(int count, char **argv)
{
    static const char *const real[] = {"ifconfig", "ip", "kill", "killall", "ps", NULL};
    const char *program = argv[0] = basename(argv[0]);
    struct script script = {.status = AS_USUAL, .really_run = AS_USUAL};
    FILE *file = NULL;
    char played[PATH_ROOM];

    record(program, argv + 1);
    for (int i = 1; i < count; i++)
        if (strcmp(program, "modprobe") == 0 && strcmp(argv[i], "--show-depends") == 0)
            return run_real(program, argv); /* it is only asked, which changes nothing */

    bool scripted = is_scripted(program, &script, &file);
    if (scripted) {
        struct timespec rest = {.tv_sec = (time_t)script.sleep};
        rest.tv_nsec = (long)((script.sleep - (double)rest.tv_sec) * 1e9);
        say(STDOUT_FILENO, file, script.output_length);
        say(STDERR_FILENO, file, script.error_length);
        while (nanosleep(&rest, &rest) != 0) { }
    }
    snprintf(played, sizeof played, PLAYED "%s", program);
    if (!scripted)
        execv(played, argv); /* where there is none, goes on */
    if (script.really_run == AS_USUAL)
        script.really_run = script.status == AS_USUAL && is_one_of(program, real);
    if (script.really_run)
        return run_real(program, argv);
    if (script.if_installed)
        return status_if_installed(count, argv);
    return script.status == AS_USUAL ? 0 : script.status;
}
