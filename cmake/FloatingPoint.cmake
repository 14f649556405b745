# Where a compiler keeps floats in wider registers, as it does for the x87, sums, samples, spheres and contacts get
# other bits. Processors of the last twenty years have others, which tessary_target() asks for.
include(CheckCXXSourceCompiles)
set(tessary_plain_floats "#include <cfloat>
#if FLT_EVAL_METHOD != 0
#error floats are computed with more bits than they have
#endif
int main() { return 0; }")
check_cxx_source_compiles("${tessary_plain_floats}" TESSARY_FLOATS_ARE_PLAIN)
set(TESSARY_FLOAT_OPTIONS)
if(NOT TESSARY_FLOATS_ARE_PLAIN)
  set(TESSARY_FLOAT_OPTIONS -msse2 -mfpmath=sse)
  set(CMAKE_REQUIRED_FLAGS "-msse2 -mfpmath=sse")
  check_cxx_source_compiles("${tessary_plain_floats}" TESSARY_FLOATS_ARE_PLAIN_IN_SSE)
  unset(CMAKE_REQUIRED_FLAGS)
  if(NOT TESSARY_FLOATS_ARE_PLAIN_IN_SSE)
    message(FATAL_ERROR "This compiler computes floats with more bits than they have (FLT_EVAL_METHOD is not 0), so "
      "results would not be those of other machines. Give CMAKE_CXX_FLAGS that make it 0, or use another compiler")
  endif()
endif()
