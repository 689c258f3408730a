/* The floor of every whole command: a process that only starts and ends. */
int main(void) {
    return 0;
}
