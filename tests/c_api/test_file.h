#ifndef MDF_TESTS_C_API_TEST_FILE_H_
#define MDF_TESTS_C_API_TEST_FILE_H_

#ifdef __cplusplus
extern "C" {
#endif

enum TestFile {
  whole_file,      /* five records of an engine, two of a body; it begins at +01:00 */
  torn_file,       /* the engine's last record is cut */
  local_time_file, /* it begins at a time without a zone */
  timeless_file,   /* it does not say when it begins */
  array_file,      /* the two elements of its array have records of their own */
  bus_file,        /* three frames, three attachments and an event */
  no_file_of_mdf
};

/* Writes a file; 0 when that has failed. */
int writeTestFile(const char* path, enum TestFile which);

#ifdef __cplusplus
}
#endif

#endif /* MDF_TESTS_C_API_TEST_FILE_H_ */
