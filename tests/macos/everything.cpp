// SPDX-License-Identifier: MIT
//
// The main of a program that is linked, to resolve every reference, and never run.
int main() {}
