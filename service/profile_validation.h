#ifndef TESSARY_SERVICE_PROFILE_VALIDATION_H
#define TESSARY_SERVICE_PROFILE_VALIDATION_H

#include "service/profile.h"

namespace tsypr::service
{

class ProblemList;

// Checks what no single field shows: identifiers used twice, defaults that the printer does not offer, features
// without their lists.
void CheckProfile(const Profile& profile, ProblemList& problems);

// Gives every setting that the printer has but the profile leaves open its default, and takes away those that the
// printer does not have. Expects a checked profile.
void CompleteDefaults(Profile& profile);

} // namespace tsypr::service

#endif
