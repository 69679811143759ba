// SPDX-License-Identifier: MIT
//
// Nothing but a place to compile the tests' common headers in.
int main() {
  return 0;
}
