#ifndef VEKTKK_TESTS_SUPPORT_PLATFORMFAULTS_H
#define VEKTKK_TESTS_SUPPORT_PLATFORMFAULTS_H

// The unit-test executables are linked with --wrap for the factories of the
// atom-tag container, so a test can make them fail as a device short of
// memory would.
namespace faults {

void FailDecoderCreation(bool fail);
void FailEncoderCreation(bool fail);

}  // namespace faults

#endif  // VEKTKK_TESTS_SUPPORT_PLATFORMFAULTS_H
