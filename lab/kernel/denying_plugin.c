/* SPDX-License-Identifier: MIT */
/* For the provider's pppd: refuses every CHAP response with the words "permission denied". pppd
   takes only plugins that were made for its own version. */
#include <stdio.h>

char pppd_version[] = PPPD_VERSION;

struct chap_digest_type;

extern int (*chap_verify_hook)(const char *name, const char *ourname, int id,
    struct chap_digest_type *digest, const unsigned char *challenge, const unsigned char *response,
    char *message, int message_space);

void plugin_init(void);

static int deny(const char *name, const char *ourname, int id, struct chap_digest_type *digest,
    const unsigned char *challenge, const unsigned char *response, char *message, int message_space)
{
    (void)name, (void)ourname, (void)id, (void)digest, (void)challenge, (void)response;
    snprintf(message, message_space, "permission denied");
    return 0;
}

void plugin_init(void)
{
    chap_verify_hook = deny;
}
