/* A C host of Velqua: translates a file of call records with a switch
 * configuration and prints one CSV row a record, as `velqua translate
 * --format csv` does.
 *
 *   cc -std=c99 -o velqua_rows velqua_rows.c $(pkg-config --cflags --libs velqua)
 *   ./velqua_rows CONFIG RECORDS [EXTENSION_LIST]
 *
 * CONFIG is a .cfg, .ini or .json configuration; EXTENSION_LIST the account
 * code to extension list of a Panasonic KX-TDA. */
#include <stdio.h>
#include <string.h>
#include <velqua/velqua_c.h>

/* Prints the last error of the library: number, source, Spanish description. */
static int fail(const char* what) {
  char* source = NULL;
  char* description = NULL;
  velqua_error_source(&source);
  velqua_error_description(&description);
  fprintf(stderr, "velqua_rows: %s: error %ld in %s: %s\n", what, (long)velqua_error_number(),
          source ? source : "?", description ? description : "?");
  velqua_free(source);
  velqua_free(description);
  return 1;
}

/* A CSV field: quoted when it holds a comma, a quote, CR or LF. */
static void text(const char* s) {
  putchar(',');
  if (strpbrk(s, ",\"\r\n") == NULL) {
    fputs(s, stdout);
    return;
  }
  putchar('"');
  for (; *s != '\0'; ++s) {
    if (*s == '"') putchar('"');
    putchar(*s);
  }
  putchar('"');
}

static void row(const velqua_call* c) {
  printf("%lld,%ld,%s,%ld,%s,", (long long)c->record, (long)c->type, c->type_name,
         (long)c->attribute, c->attribute_name);
  if (c->has_fields) {
    if (c->has_date) printf("%04ld-%02ld-%02ld", (long)c->year, (long)c->month, (long)c->day);
    putchar(',');
    if (c->has_time) printf("%02ld:%02ld", (long)(c->time / 3600), (long)(c->time / 60 % 60));
    if (c->has_time && c->has_seconds) printf(":%02ld", (long)(c->time % 60));
    putchar(',');
    if (c->duration >= 0) printf("%ld", (long)c->duration);
    putchar(',');
    if (c->ring >= 0) printf("%ld", (long)c->ring);
    text(c->dialled);
    text(c->extension);
    text(c->trunk);
    text(c->receiving_extension);
    text(c->receiving_trunk);
    text(c->account_code);
    printf(",%d", c->extension_random ? 1 : 0);
  } else {
    fputs(",,,,,,,,,,", stdout);
  }
  text(c->error);
  fputs("\r\n", stdout);
}

/* Prints every row the translation has ready. */
static int drain(velqua_translation* translation, velqua_call* call) {
  bool got = true;
  while (got) {
    if (velqua_translation_next(translation, call, &got) != 0) return fail("next row");
    if (got) row(call);
  }
  return 0;
}

static int run(velqua_cfg* cfg, FILE* records, const char* extensions) {
  velqua_translation_settings settings = {extensions, NULL, false, 0};
  velqua_translation* translation = NULL;
  velqua_call call;
  char block[65536];
  size_t n;
  int status = 0;
  if (velqua_translation_create(cfg, &settings, &translation) != 0) return fail("translation");
  memset(&call, 0, sizeof call);
  fputs(
      "record,type,type_name,attribute,attribute_name,date,time,duration,ring,dialled,"
      "extension,trunk,receiving_extension,receiving_trunk,account_code,extension_random,"
      "error\r\n",
      stdout);
  while (status == 0 && (n = fread(block, 1, sizeof block, records)) > 0) {
    status = velqua_translation_write(translation, block, n) != 0 ? fail("records")
                                                                  : drain(translation, &call);
  }
  if (status == 0) {
    status =
        velqua_translation_finish(translation) != 0 ? fail("records") : drain(translation, &call);
  }
  velqua_call_clear(&call);
  velqua_translation_release(translation);
  return status;
}

int main(int argc, char** argv) {
  velqua_cfg* cfg = NULL;
  char* name = NULL;
  FILE* records;
  int status;
  if (argc < 3 || argc > 4) {
    fputs("usage: velqua_rows CONFIG RECORDS [EXTENSION_LIST]\n", stderr);
    return 2;
  }
  if (velqua_cfg_load(argv[1], &cfg) != 0) return fail(argv[1]);
  if (velqua_cfg_nombre_conmutador_get(cfg, &name) == 0) fprintf(stderr, "switch: %s\n", name);
  velqua_free(name);
  records = fopen(argv[2], "rb");
  if (records == NULL) {
    perror(argv[2]);
    velqua_cfg_release(cfg);
    return 1;
  }
  status = run(cfg, records, argc == 4 ? argv[3] : NULL);
  fclose(records);
  velqua_cfg_release(cfg);
  return status;
}
