/* Reads a file in C: arrow FILE prints what is in it as JSON, arrow FILE CHANNEL the sum of a
 * channel of real numbers. What comes is Arrow's C data interface, which other libraries take as it
 * is. */

#include <mdf_reader/c_api.h>
#include <stdio.h>
#include <string.h>

static int complain(const mdf_error* error) {
  fprintf(stderr, "%s: %s\n", error->code, error->text);
  return 1;
}

static int describe(mdf_file* file) {
  mdf_error error;
  char* about = mdf_describe(file, &error);
  if (about == NULL) {
    return complain(&error);
  }
  puts(about);
  mdf_free(about);
  return 0;
}

/* Adds the values of a column that are there. */
static double sumOf(const struct ArrowArray* column) {
  const uint8_t* validity = column->buffers[0];
  const double* values = column->buffers[1];
  double sum = 0;
  for (int64_t row = 0; row < column->length; ++row) {
    if (validity == NULL || (validity[row / 8] >> (row % 8) & 1) != 0) {
      sum += values[row];
    }
  }
  return sum;
}

/* The last field is the wanted channel, after the master channel. */
static int printSum(struct ArrowArrayStream* stream) {
  struct ArrowSchema schema;
  struct ArrowArray batch;
  double sum = 0;
  if (stream->get_schema(stream, &schema) != 0) {
    fprintf(stderr, "%s\n", stream->get_last_error(stream));
    return 1;
  }
  const int64_t last = schema.n_children - 1;
  const int is_real = strcmp(schema.children[last]->format, "g") == 0;
  schema.release(&schema);
  if (!is_real) {
    fputs("the channel has no values of type double\n", stderr);
    return 1;
  }
  while (stream->get_next(stream, &batch) == 0) {
    if (batch.release == NULL) {
      printf("%g\n", sum);
      return 0;
    }
    sum += sumOf(batch.children[last]);
    batch.release(&batch);
  }
  fprintf(stderr, "%s\n", stream->get_last_error(stream));
  return 1;
}

static int readSum(mdf_file* file, const char* channel) {
  char query[256];
  struct ArrowArrayStream stream;
  mdf_error error;
  snprintf(query, sizeof query, "{\"channels\": [\"%s\"]}", channel);
  if (mdf_read(file, query, &stream, &error) != 0) {
    return complain(&error);
  }
  const int exit_code = printSum(&stream);
  stream.release(&stream);
  return exit_code;
}

int main(int argc, char** argv) {
  mdf_file* file;
  mdf_error error;
  if (argc < 2) {
    fputs("Usage: arrow FILE [CHANNEL]\n", stderr);
    return 2;
  }
  if (mdf_open(argv[1], &file, &error) != 0) {
    return complain(&error);
  }
  const int exit_code = argc == 2 ? describe(file) : readSum(file, argv[2]);
  mdf_close(file);
  return exit_code;
}
