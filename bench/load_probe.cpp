// Does nothing: what it takes to load is that of the libraries it is linked to.
int main()
{
    return 0;
}
