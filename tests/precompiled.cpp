// The program that owns the precompiled headers of all tests.
int main() {
  return 0;
}
